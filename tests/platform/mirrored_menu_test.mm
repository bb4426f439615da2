// A menu for a language that runs from right to left.
#include <cairo.h>

#include <algorithm>

#include "appkit/row_tips.h"
#include "platform/presenter.h"
#include "x11/screens.h"

namespace {

// The first text decides which language the process has.
const bool is_arabic = setenv("LANGUAGE", "ar", 1) == 0;

class MirroredMenu : public Presenter {
  protected:
    void SetUp() override {
        ASSERT_TRUE(is_arabic);
        Presenter::SetUp();
    }
};

// What a level looks like.
class Picture {
  public:
    explicit Picture(const MenuLevel& level)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, level.panel().width,
                                              level.panel().height)) {
        cairo_t* const cairo = cairo_create(surface_);
        level.draw_picture(cairo, 0, 0, false);
        cairo_destroy(cairo);
        cairo_surface_flush(surface_);
    }
    ~Picture() { cairo_surface_destroy(surface_); }

    // The pixels between two heights and two shares of the width that differ from the ground.
    int drawn(int top, int bottom, double from, double to) const {
        const int width = cairo_image_surface_get_width(surface_);
        const uint32_t ground = pixel(width / 2, top + 1);
        int count = 0;
        for (int y = top; y < bottom; y++) {
            for (int x = int(width * from); x < int(width * to); x++) {
                count += pixel(x, y) != ground;
            }
        }
        return count;
    }

  private:
    uint32_t pixel(int x, int y) const {
        const unsigned char* const row =
            cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
        return reinterpret_cast<const uint32_t*>(row)[x];
    }
    cairo_surface_t* const surface_;
};

}  // namespace

TEST_F(MirroredMenu, OpensLeftOfThePointerAndItsSubmenusToTheLeft) {
    shown([this] { moveTo(@"folder"); });
    levels(2, [this] {
        const Area root = shown_level(0).panel(), submenu = shown_level(1).panel();
        EXPECT_LE(root.right(), left);
        EXPECT_EQ(shown_level(1).side(), on_left);
        EXPECT_LT(submenu.left, root.left);
        EXPECT_LE(submenu.right(), root.left + 4);
        key("Escape");
    });
    run();
}

TEST_F(MirroredMenu, OpensItsSubmenusToTheRightAtTheLeftEdgeOfTheScreen) {
    shown([this] { moveTo(@"folder"); });
    levels(2, [this] {
        EXPECT_EQ(shown_level(1).side(), on_right);
        EXPECT_GE(shown_level(1).panel().left, shown_level(0).panel().right() - 4);
        key("Escape");
    });
    run(20, 200);
}

TEST_F(MirroredMenu, LeftEntersALevelAndRightLeavesIt) {
    shown([this] {
        key("Down");
        key("Down");
        key("Left");
    });
    highlighted("inner", 1, [this] { key("Right"); });
    levels(1, [this] { key("Left"); });
    highlighted("inner", 1, [this] { key("space"); });
    run();
    EXPECT_NE(log().find("pick inner"), std::string::npos);
}

TEST_F(MirroredMenu, HasItsTitlesAtTheRightAndItsArrowsAtTheLeft) {
    shown([this] {
        const MenuLevel& level = shown_level(0);
        const MenuRow alpha = level.layout().rows()[0], folder = level.layout().rows()[1];
        const Picture picture(level);
        const auto drawn = [&](const MenuRow& row, double from, double to) {
            return picture.drawn(row.top + 2, row.top + row.height - 2, from, to);
        };
        EXPECT_GT(drawn(alpha, 0.6, 0.97), 0);
        EXPECT_EQ(drawn(alpha, 0.03, 0.4), 0);
        EXPECT_GT(drawn(folder, 0.03, 0.2), 0);
        key("Escape");
    });
    run();
}

// Where the tip is; empty without one.
static Area tip_area() {
    for (NSWindow* window in [NSApp windows]) {
        if (![[window title] isEqual:@"Tip"] || ![window isVisible]) continue;
        const NSRect frame = [window frame];
        const MenuPoint corner = server_point(NSMakePoint(NSMinX(frame), NSMaxY(frame)));
        return {corner.x, corner.y, static_cast<int>(NSWidth(frame)),
                static_cast<int>(NSHeight(frame))};
    }
    return {};
}

// How many pixels of the tip's upper half differ from its ground.
static long drawn_in_tip(test::XInput& input) {
    const Area tip = tip_area();
    if (!tip.width) return 0;
    const std::vector<unsigned long> pixels =
        input.pixels(tip.left + 8, tip.top + 4, tip.width - 16, tip.height / 2 - 4);
    const auto count = [&](unsigned long color) { return std::ranges::count(pixels, color); };
    return static_cast<long>(pixels.size()) - count(std::ranges::max(pixels, {}, count));
}

TEST_F(MirroredMenu, ATipIsAsWideAsItsLinesFromRightToLeft) {
    NSString* const name = @"\u0645\u0644\u0641 \u0637\u0648\u064A\u0644";
    NSString* const title = @"\u0645...\u0644";
    [[recorder_ addItem:title toMenu:root_]
        setRepresentedObject:[@"/where" stringByAppendingPathComponent:name]];
    [NSMenu setPathQuestion:[](NSMenuItem* item) { return (NSString*)[item representedObject]; }];
    shown([this, title] { moveTo(title); });
    script_.when(
        "the name in the tip", [this] { return drawn_in_tip(script_.input) > 60; },
        [this] {
            EXPECT_LT(tip_area().width, 120) << "as wide as its widest line";
            key("Escape");
        });
    run();
    [NSMenu setPathQuestion:nullptr];
}
