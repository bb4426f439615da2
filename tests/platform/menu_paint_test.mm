// Rows as they are painted.
#include <AppKit/AppKit.h>
#include <cairo.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "look/bitmaps.h"
#include "look/menu_text.h"
#include "menus/menu_paint.h"
#include "support/app.h"
#include "support/temp_folder.h"

namespace {

class MenuPaint : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        menu_ = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
        [menu_ setAutoenablesItems:NO];
    }
    void TearDown() override {
        if (surface_) cairo_surface_destroy(surface_);
        [pool_ release];
    }

    NSMenuItem* add(NSString* title) {
        return static_cast<NSMenuItem*>([menu_ addItemWithTitle:title
                                                         action:@selector(picked:)
                                                  keyEquivalent:@""]);
    }
    // Like the file's icon, but a full black square.
    NSImage* icon_of(const std::string& file) {
        NSBitmapImageRep* bitmap = make_bitmap(16, 16);
        memset([bitmap bitmapData], 0, 16 * 16 * 4);
        for (int i = 0; i < 16 * 16; i++) [bitmap bitmapData][i * 4 + 3] = 0xff;
        NSImage* image = [[NSWorkspace sharedWorkspace]
            iconForFile:[NSString stringWithUTF8String:file.c_str()]];
        for (NSImageRep* rep in [image representations]) [image removeRepresentation:rep];
        [image setSize:NSMakeSize(16, 16)];
        [image addRepresentation:bitmap];
        return image;
    }
    // With `shadow`, there is room for it around the panel.
    void paint(NSMenuItem* highlighted = nil, bool is_trail = false, bool shadow = false) {
        layout_.update(menu_, 0);
        const int room = shadow ? layout_.look().shadow_extent : 0;
        if (surface_) cairo_surface_destroy(surface_);
        surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, layout_.width() + 2 * room,
                                              layout_.height() + 2 * room);
        cairo_t* cairo = cairo_create(surface_);
        paint_menu(cairo, scene_of(highlighted, is_trail, shadow));
        cairo_destroy(cairo);
        cairo_surface_flush(surface_);
    }
    MenuScene scene_of(NSMenuItem* highlighted, bool is_trail, bool shadow) {
        const int room = shadow ? layout_.look().shadow_extent : 0;
        MenuScene scene = {};
        scene.layout = &layout_;
        scene.images = &images_;
        scene.highlighted = highlighted;
        scene.is_trail = is_trail;
        scene.shadow = shadow;
        scene.left = scene.top = room;
        scene.width = layout_.width();
        scene.height = layout_.height();
        scene.rounded = true;
        return scene;
    }
    std::vector<unsigned char> pixels() const {
        const unsigned char* data = cairo_image_surface_get_data(surface_);
        const int height = cairo_image_surface_get_height(surface_);
        return {data, data + height * cairo_image_surface_get_stride(surface_)};
    }
    unsigned pixel(int x, int y) const {
        const unsigned char* row =
            cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
        return reinterpret_cast<const uint32_t*>(row)[x] & 0xffffff;
    }
    // How dark the darkest pixel of a row's title is; 255 is white.
    unsigned darkest(int row) const {
        const MenuRow& found = layout_.rows()[static_cast<size_t>(row)];
        unsigned least = 255;
        for (int y = found.top; y < found.top + found.height; y++) {
            for (int x = layout_.title_left(found); x < layout_.title_right(); x++) {
                least = std::min(least, pixel(x, y) & 0xff);
            }
        }
        return least;
    }
    unsigned icon_pixel(int row) const {
        const MenuRow& found = layout_.rows()[static_cast<size_t>(row)];
        return pixel(layout_.image_left() + 8, found.top + found.height / 2) & 0xff;
    }

    NSAutoreleasePool* pool_;
    NSMenu* menu_;
    MenuLayout layout_{menu_look(nil, nullptr)};
    ImageCache images_;
    cairo_surface_t* surface_ = nullptr;
};

}  // namespace

TEST_F(MenuPaint, MarksThatPileUpStayInTheirRow) {
    NSMutableString* piled = [NSMutableString string];
    for (const char letter : {'Z', 'a', 'l', 'g', 'o'}) {
        [piled appendFormat:@"%c", letter];
        for (int i = 0; i < 40; i++)
            [piled appendFormat:@"%C%C", unichar(0x0300 + i % 16), unichar(0x0316 + i % 14)];
    }
    add(@" ");
    add(piled);
    add(@" ");
    paint();
    EXPECT_GT(darkest(0), 230u);
    EXPECT_LT(darkest(1), 100u);
    EXPECT_GT(darkest(2), 230u);
}

TEST_F(MenuPaint, ARowThatIsDrawnAnewHasTheSamePixelsAsInTheWholeMenu) {
    for (int i = 0; i < 5; i++) {
        [add(@"MMM") setSubmenu:[[[NSMenu alloc] initWithTitle:@"submenu"] autorelease]];
    }
    for (const bool shadow : {false, true}) {
        paint([menu_ itemAtIndex:2], false, shadow);
        const std::vector<unsigned char> whole = pixels();
        const MenuRow& row = layout_.rows()[2];
        const MenuScene scene = scene_of([menu_ itemAtIndex:2], false, shadow);
        cairo_t* cairo = cairo_create(surface_);
        cairo_rectangle(cairo, scene.left, scene.top + row.top, scene.width, row.height);
        cairo_clip(cairo);
        paint_menu(cairo, scene);
        cairo_destroy(cairo);
        cairo_surface_flush(surface_);
        EXPECT_TRUE(pixels() == whole) << "with a shadow: " << shadow;
    }
}

TEST_F(MenuPaint, AllChevronsOfAMenuLookTheSame) {
    for (int i = 0; i < 3; i++) {
        [add(@" ") setSubmenu:[[[NSMenu alloc] initWithTitle:@"submenu"] autorelease]];
    }
    paint();
    const auto mark_of = [this](size_t index) {
        const MenuRow& row = layout_.rows()[index];
        std::vector<unsigned> mark;
        for (int y = row.top; y < row.top + row.height; y++) {
            for (int x = layout_.title_right(); x < layout_.width() - 3; x++) {
                mark.push_back(pixel(x, y));
            }
        }
        return mark;
    };
    EXPECT_EQ(mark_of(0), mark_of(1));
    EXPECT_EQ(mark_of(0), mark_of(2));
    const auto [least, most] = std::ranges::minmax(mark_of(0));
    EXPECT_NE(least, most);
}

TEST_F(MenuPaint, RowsOfHiddenFilesAreDimButNotDisabled) {
    test::TempFolder folder;
    folder.file(".hidden", "listed\n");
    NSMenuItem* plain = add(@"MMM");
    NSMenuItem* dotted = add(@"MMM");
    NSMenuItem* listed = add(@"MMM");
    NSMenuItem* disabled = add(@"MMM");
    [plain setImage:icon_of(folder.file("plain"))];
    [dotted setImage:icon_of(folder.file(".dotted"))];
    [listed setImage:icon_of(folder.file("listed"))];
    [disabled setImage:icon_of(folder.file("disabled"))];
    [disabled setEnabled:NO];
    paint();
    EXPECT_LT(icon_pixel(0), 10u);
    for (const int hidden : {1, 2}) {
        EXPECT_GT(icon_pixel(hidden), 80u);
        EXPECT_GT(darkest(hidden), darkest(0) + 30);
        EXPECT_LT(darkest(hidden), darkest(3) - 20) << "not as one that cannot be used";
    }
    EXPECT_TRUE([dotted isEnabled]);
}

TEST_F(MenuPaint, ADimRowIsLegibleWhileItIsHighlighted) {
    test::TempFolder folder;
    NSMenuItem* plain = add(@"MMM");
    NSMenuItem* dotted = add(@"MMM");
    [plain setImage:icon_of(folder.file("plain"))];
    [dotted setImage:icon_of(folder.file(".dotted"))];
    paint(dotted);
    unsigned brightest = 0;
    const MenuRow& row = layout_.rows()[1];
    for (int y = row.top; y < row.top + row.height; y++) {
        for (int x = layout_.title_left(row); x < layout_.title_right(); x++) {
            brightest = std::max(brightest, pixel(x, y) >> 16);
        }
    }
    EXPECT_GT(brightest, 240u);
}

// Most titles have more characters than the widest, or letters as wide.
TEST_F(MenuPaint, TheWidestOfManyTitlesIsShownWhole) {
    const struct {
        unichar letter;
        NSUInteger count;
    } titles[] = {{'W', 24}, {0x5199, 22}, {0x0429, 24}};  // Latin, Chinese, Russian
    for (const auto& title : titles) {
        NSString* letter = [NSString stringWithCharacters:&title.letter length:1];
        NSString* widest = [@"" stringByPaddingToLength:title.count
                                             withString:letter
                                        startingAtIndex:0];
        menu_ = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
        [menu_ setAutoenablesItems:NO];
        for (int i = 0; i < 100; i++) {
            add([NSString stringWithFormat:@"liftlift.iflitllifttlil!,ltftilift.itl %d", i]);
            add([NSString stringWithFormat:@"Minutes of June %d", i]);
        }
        NSMenuItem* item = add(widest);
        layout_.update(menu_, 0);
        const MenuRow& row = layout_.rows()[static_cast<size_t>(layout_.row_of(item))];
        const int room = layout_.title_right() - layout_.title_left(row);
        EXPECT_EQ(room, text_width(item_text(layout_.look(), item, true)));
    }
}

TEST_F(MenuPaint, TheWidestTitleInAFontOfItsOwnIsShownWhole) {
    for (int i = 0; i < 100; i++) add([NSString stringWithFormat:@"Minutes of June %d", i]);
    NSMenuItem* item = add(@"Minutes");
    NSDictionary* attributes = @{NSFontAttributeName : [NSFont systemFontOfSize:60]};
    [item setAttributedTitle:[[[NSAttributedString alloc] initWithString:@"Minutes"
                                                              attributes:attributes] autorelease]];
    layout_.update(menu_, 0);
    const MenuRow& row = layout_.rows()[static_cast<size_t>(layout_.row_of(item))];
    const int room = layout_.title_right() - layout_.title_left(row);
    EXPECT_EQ(room, text_width(item_text(layout_.look(), item, true)));
}

// How far two colours are apart.
static unsigned distance(unsigned color, unsigned other) {
    unsigned sum = 0;
    for (const int shift : {0, 8, 16}) {
        const int one = color >> shift & 0xff, two = other >> shift & 0xff;
        sum += static_cast<unsigned>(std::abs(one - two));
    }
    return sum;
}

TEST_F(MenuPaint, ARowThatLedToADeeperHighlightIsWeakerThanThat) {
    NSMenuItem* item = add(@"row");
    const auto beside_title = [&] {
        const MenuRow& row = layout_.rows()[0];
        return pixel(layout_.width() / 2, row.top + 3);
    };
    paint();
    const unsigned plain = beside_title();
    paint(item);
    const unsigned full = distance(beside_title(), plain);
    EXPECT_LT(darkest(0), 255u);
    paint(item, true);
    const unsigned weaker = distance(beside_title(), plain);
    EXPECT_GT(weaker, 20u) << "it can be seen";
    EXPECT_LT(weaker, full / 2);
}

TEST_F(MenuPaint, TheShadowFadesFromTheEdgeOnWithoutAFlatBand) {
    for (int i = 0; i < 6; i++) add(@"row");
    paint(nil, false, true);
    const int room = layout_.look().shadow_extent;
    const int middle = room + layout_.width() / 2, below = room + layout_.height();
    const auto shade = [&](int y) {
        const unsigned char* line =
            cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
        return reinterpret_cast<const uint32_t*>(line)[middle] >> 24;
    };
    EXPECT_GT(shade(below), 30u);
    EXPECT_LT(shade(below + room - 1), 4u);
    for (int y = below + 3; y < below + room; y += 3) {
        if (shade(y - 3) > 3) EXPECT_LT(shade(y), shade(y - 3)) << y - below;
    }
}

TEST_F(MenuPaint, ARibbonMarksAPlaceOfTheUserInEveryPalette) {
    NSMenuItem* item = add(@"place");
    [item setImage:[[[NSImage alloc] initWithSize:NSMakeSize(16, 16)] autorelease]];
    [[item image] addRepresentation:make_bitmap(16, 16)];
    memset([static_cast<NSBitmapImageRep*>([[[item image] representations] objectAtIndex:0])
               bitmapData],
           0, 16 * 16 * 4);
    for (const char* theme : {"Adwaita", "Adwaita:dark", "HighContrast", "HighContrast:dark"}) {
        setenv("GTK_THEME", theme, 1);
        MenuLayout layout(menu_look(nil, nullptr));
        layout.update(menu_, 0);
        const auto corner = [&] {
            cairo_surface_t* surface =
                cairo_image_surface_create(CAIRO_FORMAT_ARGB32, layout.width(), layout.height());
            cairo_t* cairo = cairo_create(surface);
            MenuScene scene = {};
            scene.layout = &layout;
            scene.images = &images_;
            scene.width = layout.width();
            scene.height = layout.height();
            scene.rounded = true;
            paint_menu(cairo, scene);
            cairo_destroy(cairo);
            cairo_surface_flush(surface);
            const MenuRow& row = layout.rows()[0];
            const unsigned char* line =
                cairo_image_surface_get_data(surface) +
                (row.top + row.height / 2 + 3) * cairo_image_surface_get_stride(surface);
            const unsigned color =
                reinterpret_cast<const uint32_t*>(line)[layout.image_left() + 12] & 0xffffff;
            cairo_surface_destroy(surface);
            return color;
        };
        const unsigned plain = corner();
        [NSMenu setMarkQuestion:[](NSMenuItem*) { return menu_mark_bookmark; }];
        EXPECT_GT(distance(corner(), plain), 150u) << theme;
        [NSMenu setMarkQuestion:nullptr];
    }
    unsetenv("GTK_THEME");
}

// A window has such a size after another program has said so.
TEST_F(MenuPaint, AnAreaThatNoPictureCanHaveIsLeftAlone) {
    bool was_asked = false;
    draw_through_bitmap(NSMakeRect(0, 0, 40000, 10), [&](cairo_t*) { was_asked = true; });
    EXPECT_TRUE(was_asked);
}
