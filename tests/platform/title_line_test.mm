// Titles that need no layout look as Pango's layout shows them, pixel for pixel.
#include <AppKit/AppKit.h>
#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "look/title_line.h"
#include "support/app.h"

namespace {

constexpr int surface_width = 900, surface_height = 80;

class TitleLineTest : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        item_ = [[[NSMenuItem alloc] initWithTitle:@"" action:NULL keyEquivalent:@""] autorelease];
    }
    void TearDown() override { [pool_ release]; }

    void set_title(const std::string& title) {
        [item_ setTitle:[NSString stringWithUTF8String:title.c_str()]];
    }
    template <typename Draw>
    static std::vector<unsigned char> drawn(Draw draw) {
        cairo_surface_t* surface =
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, surface_width, surface_height);
        cairo_t* cairo = cairo_create(surface);
        cairo_set_source_rgb(cairo, 1, 1, 1);
        cairo_paint(cairo);
        cairo_set_source_rgba(cairo, 0.2, 0.1, 0.4, 0.9);
        draw(cairo);
        cairo_destroy(cairo);
        cairo_surface_flush(surface);
        const unsigned char* const data = cairo_image_surface_get_data(surface);
        std::vector<unsigned char> pixels(
            data, data + cairo_image_surface_get_stride(surface) * surface_height);
        cairo_surface_destroy(surface);
        return pixels;
    }
    // The title, as wide as the room for it, drawn by Pango's layout.
    std::vector<unsigned char> drawn_by_pango(const MenuLook& look, double x, double y, int room) {
        return drawn([&](cairo_t* cairo) {
            const TextLayout text = item_text(look, item_, false);
            if (text_width(text) > room) fit_text(text, room);
            cairo_move_to(cairo, x - text_left(text), y);
            pango_cairo_show_layout(cairo, text.get());
        });
    }
    std::vector<unsigned char> drawn_as_line(const MenuLook& look, double x, double y, int room) {
        return drawn([&](cairo_t* cairo) {
            TitleLine line(look, item_, false);
            if (line.width() > room) line.fit(room);
            line.show(cairo, x, y);
        });
    }
    void expect_same(const MenuLook& look, const std::string& title, int room = surface_width) {
        SCOPED_TRACE(title);
        set_title(title);
        const TextLayout text = item_text(look, item_, false);
        const TitleLine line(look, item_, false);
        EXPECT_EQ(text_width(text), line.width());
        EXPECT_EQ(text_height(text), line.height());
        for (const double x : {10.0, 33.0, 7.5}) {
            EXPECT_EQ(drawn_by_pango(look, x, 12, room), drawn_as_line(look, x, 12, room));
        }
    }
    bool is_simple(const std::string& title) {
        set_title(title);
        return TitleLine(menu_look(nil, ""), item_, false).is_simple();
    }

    NSMenuItem* item_;

  private:
    NSAutoreleasePool* pool_;
};

const char* const titles[] = {
    "report.txt",
    "Photo 0042 (copy).tar.gz",
    "AVATAR To. Wave, fi fl ffi office",
    " spaces  at both ends ",
    "a",
    "IMG_0001 [1] {2} <3> #*0-9 @ 50% & more ~ `x` \\ | / ^ \"q\" 'r'",
    "caf\u00e9 f\u00fcr \u0141\u00f3d\u017a \u0160koda \u00c5ngstr\u00f6m \u00df",
    "\u00c9",
    "x\u00d7y",
    "",
    "2026-11-22",
    "cafe\u0301",
    "\u043e\u0442\u0447\u0451\u0442 12",
    "\u5199\u771f report",
    "a\u05d0b",
    "line\nbreak\ttab\x7f",
    "\u00a9 2026 \u2122 \u2026",
    "face \U0001f600 and key 1\ufe0f\u20e3",
};

TEST_F(TitleLineTest, AnyTitleLooksAsPangoLaysItOut) {
    const MenuLook look = menu_look(nil, "");
    for (const char* title : titles) expect_same(look, title);
}

TEST_F(TitleLineTest, TitlesLookTheSameInOtherFontsAndSizes) {
    MenuLook look = menu_look(nil, "");
    for (const char* const family : {"DejaVu Serif", "Liberation Sans", "No Such Font"}) {
        look.family = family;
        for (const double scale : {1.0, 1.25, 2.0}) {
            look.scale = scale;
            look.bold = !look.bold;
            look.italic = scale > 1;
            for (const char* title : titles) expect_same(look, title);
        }
    }
}

TEST_F(TitleLineTest, ALongTitleLosesItsMiddleAsInPangosLayout) {
    const MenuLook look = menu_look(nil, "");
    expect_same(look, "a rather long name of a document that does not fit.txt", 120);
    expect_same(look, std::string(400, 'n'), 300);
}

TEST_F(TitleLineTest, AnAttributedTitleLooksAsPangoLaysItOut) {
    const MenuLook look = menu_look(nil, "");
    NSDictionary* red = [NSDictionary dictionaryWithObject:[NSColor redColor]
                                                    forKey:NSForegroundColorAttributeName];
    [item_ setAttributedTitle:[[[NSAttributedString alloc] initWithString:@"labelled"
                                                               attributes:red] autorelease]];
    EXPECT_FALSE(TitleLine(look, item_, false).is_simple());
    EXPECT_EQ(drawn_by_pango(look, 10, 12, surface_width),
              drawn_as_line(look, 10, 12, surface_width));
}

TEST_F(TitleLineTest, OnlyLatinLettersWithSignsAndDigitsAreSimple) {
    for (const char* title : {"report.txt", "Photo 0042 (copy).tar.gz", "caf\u00e9"}) {
        EXPECT_TRUE(is_simple(title)) << title;
    }
    for (const char* title : {"", "2026-11-22", "cafe\u0301", "\u5199\u771f report", "a\u05d0b",
                              "line\nbreak", "\u00a9 x", "x\u00d7y"}) {
        EXPECT_FALSE(is_simple(title)) << title;
    }
}

}  // namespace
