// Pictures of files in an open menu: the preview submenu behind Option, and the hover window.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <cairo.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "desktop/desk.h"
#include "platform/quicklook/sample_files.h"

// The plug-in's class, which is known only by name.
@interface NSObject (HoverWindow)
+ (id)sharedDelvio;
- (BOOL)isVisible;
@end

namespace {

using test::Steps;

// Room for a few previews, but not for a picture of ten gigabytes. The sanitizers keep freed
// memory.
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
constexpr long most_growth = 400'000'000;
#else
constexpr long most_growth = 30'000'000;
#endif

long resident_bytes() {
    long total = 0, resident = 0;
    FILE* file = fopen("/proc/self/statm", "r");
    if (!file) return 0;
    if (fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    fclose(file);
    return resident * sysconf(_SC_PAGESIZE);
}

class Preview : public test::Desk {
  protected:
    void SetUp() override {
        folder_.file("project/a.txt", "The first text\n");
        folder_.file("project/b.txt", "The second text\n");
        folder_.folder("project/inner");
        select({folder_.path("project")});
        set_preference("hoverPreviewsInterval", "300");
    }
    void TearDown() override {
        set_preference("hoverPreviewsInterval", "1000");
        set_preference("preview_size", "256");
    }

    void picture(const std::string& name, int width, int height) {
        const std::string path = folder_.file(name);
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
        cairo_t* cairo = cairo_create(surface);
        cairo_set_source_rgb(cairo, 1, 0, 0);
        cairo_paint(cairo);
        cairo_destroy(cairo);
        cairo_surface_write_to_png(surface, path.c_str());
        cairo_surface_destroy(surface);
    }

    // Opens the preview submenu of a file in the folder, then does `then`. The submenu is level 2.
    void in_preview_menu(const std::string& name, const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            steps
                .when(
                    "the menu", [&] { return is_open(0); }, [&] { hover("project"); })
                .when(
                    "the level", [&] { return is_open(1); },
                    [&] {
                        input().key_down("Alt_R");
                        hover(name);
                    })
                .when("the preview", [&] { return is_open(2); });
            then(steps);
        });
        input().let_go();
    }
    // The only item of the preview submenu.
    static NSMenuItem* preview_item() {
        NSArray* levels = [[MenuSession current] levels];
        NSMenu* menu = [levels count] > 2 ? [levels objectAtIndex:2] : nil;
        return [menu numberOfItems] == 1 ? static_cast<NSMenuItem*>([menu itemAtIndex:0]) : nil;
    }
    static bool has_picture() { return [preview_item() image] && ![preview_item() view]; }
    // The picture that the submenu of a file shows in the end; empty when it shows a line of text.
    NSSize picture_size(const std::string& name) {
        NSSize size = NSZeroSize;
        in_preview_menu(name, [&](Steps& steps) {
            steps.when(
                "the picture", [] { return has_picture(); },
                [&] {
                    size = [[preview_item() image] size];
                    escape();
                });
        });
        return size;
    }

    // Where the rightmost level is that is larger than this.
    static NSRect picture_window_frame(double width, double height) {
        NSWindow* window = nil;
        for (NSWindow* each in [NSApp windows]) {
            if ([each isVisible] && [each level] == NSPopUpMenuWindowLevel &&
                NSWidth([each frame]) > width && NSHeight([each frame]) > height &&
                (!window || NSMinX([each frame]) > NSMinX([window frame]))) {
                window = each;
            }
        }
        return [window frame];
    }

    // The hover window and the state that decides about it.
    static id controller() { return [NSClassFromString(@"DVDelvio") sharedDelvio]; }
    static id window_controller() { return [controller() valueForKey:@"previewWindowController"]; }
    static NSWindow* hover_window() { return [window_controller() valueForKey:@"window"]; }
    static NSImageView* image_view() { return [window_controller() valueForKey:@"imgView"]; }
    static bool is_hovering() { return [window_controller() isVisible]; }
    static bool shows_picture() {
        return is_hovering() && [image_view() superview] && [image_view() image];
    }
    static std::string hovered_path() {
        return [[[window_controller() valueForKey:@"path"] path] UTF8String] ?: "";
    }
    static double last_movement() {
        return [[controller() valueForKey:@"lastMouseMovement"] doubleValue];
    }
    static NSTimer* pending_timer() { return [controller() valueForKey:@"hoverPreviewTimer"]; }
    static double now() { return [[NSDate date] timeIntervalSince1970]; }
    // The time from the last movement until the pending timer fires.
    static double pending_delay() {
        return [[pending_timer() fireDate] timeIntervalSince1970] - last_movement();
    }

    // Rests the pointer on a row of the folder, then does `then`.
    void resting_on(const std::string& name, const std::function<void(Steps&)>& then) {
        pop_up([&](Steps& steps) {
            hover_along(steps, {"project", name});
            steps.when("the row", [this, name] { return highlighted(1) == name; });
            then(steps);
        });
    }
};

}  // namespace

TEST_F(Preview, OptionShowsThePreviewOfAFileInASubmenu) {
    picture("project/red.png", 200, 100);
    bool began_with_a_disc = false;
    NSSize size = NSZeroSize;
    in_preview_menu("red.png", [&](Steps& steps) {
        steps
            .when(
                "the item", [] { return preview_item() != nil; },
                [&] { began_with_a_disc = [preview_item() view] || has_picture(); })
            .when(
                "the picture", [] { return has_picture(); },
                [&] {
                    size = [[preview_item() image] size];
                    EXPECT_TRUE(is_open(2));
                    escape();
                });
    });
    EXPECT_TRUE(began_with_a_disc);
    EXPECT_TRUE(NSEqualSizes(size, NSMakeSize(200, 100)));
}

TEST_F(Preview, APictureIsOnTheScreenWhileTheMenuTracks) {
    picture("project/red.png", 200, 100);
    unsigned long color = 0;
    in_preview_menu("red.png", [&](Steps& steps) {
        steps
            .when(
                "the picture", [] { return has_picture(); }, [&] {})
            .when(
                "its pixels",
                [&] {
                    const NSRect frame = picture_window_frame(200, 100);
                    const NSRect screen = [[NSScreen mainScreen] frame];
                    color = input().pixel(static_cast<int>(NSMidX(frame)),
                                          static_cast<int>(NSHeight(screen) - NSMidY(frame)));
                    return color == 0xff0000;
                },
                [&] { escape(); });
    });
    EXPECT_EQ(color, 0xff0000u);
}

TEST_F(Preview, ATextIsShownAsWideAsIsSet) {
    EXPECT_EQ(picture_size("a.txt").width, 256);
    set_preference("preview_size", "128");
    EXPECT_EQ(picture_size("a.txt").width, 128);
}

// Dark letters on the white of the paper, and among them the colours of the language.
TEST_F(Preview, ASourceIsOnTheScreenInColours) {
    folder_.file("project/c.cpp", "int main() {\n    return 0;\n}\n");
    int white = 0, dark = 0, coloured = 0;
    in_preview_menu("c.cpp", [&](Steps& steps) {
        steps
            .when(
                "the picture", [] { return has_picture(); }, [&] {})
            .when(
                "its pixels",
                [&] {
                    const NSRect frame = picture_window_frame(256, 50);
                    white = dark = coloured = 0;
                    const int top =
                        static_cast<int>(NSHeight([[NSScreen mainScreen] frame]) - NSMaxY(frame));
                    const int left = static_cast<int>(NSMinX(frame));
                    for (const unsigned long color : input().pixels(left + 24, top + 24, 120, 40)) {
                        const int red = color >> 16 & 255, green = color >> 8 & 255,
                                  blue = color & 255;
                        white += color == 0xffffff;
                        dark += red < 110 && green < 110 && blue < 110;
                        coloured += std::abs(red - green) > 60 || std::abs(blue - green) > 60;
                    }
                    return white > 1000 && dark > 5 && coloured > 20;
                },
                [&] { escape(); });
    });
    EXPECT_GT(white, 1000);
    EXPECT_GT(dark, 5);
    EXPECT_GT(coloured, 20);
}

TEST_F(Preview, BytesThatAreNoTextAreShownByteByByte) {
    folder_.file("project/bytes", std::string("\0\1\2bytes\0\0", 10));
    EXPECT_TRUE(NSEqualSizes(picture_size("bytes"), NSMakeSize(256, 256)));
}

TEST_F(Preview, AFileThatCannotBeReadHasNoPreview) {
    ASSERT_EQ(mkfifo(folder_.path("project/pipe").c_str(), 0600), 0);
    Titles lines;
    bool enabled = true;
    in_preview_menu("pipe", [&](Steps& steps) {
        steps.when(
            "the line", [&] { return titles(2) == Titles({"No preview available"}); },
            [&] {
                lines = titles(2);
                enabled = [preview_item() isEnabled];
                escape();
            });
    });
    EXPECT_EQ(lines.size(), 1u);
    EXPECT_FALSE(enabled);
}

// All files are shown in one menu, which stays open and goes on to the next. The last one is a good
// file.
TEST_F(Preview, HostileFilesLeaveTheMenuAndTheMemoryAlone) {
    folder_.file("project/bomb.png", test::white_png_bytes(50000, 50000));
    folder_.file("project/cut.png", test::image_bytes(300, 300, "png").substr(0, 200));
    folder_.file("project/hole.jpg");
    ASSERT_EQ(truncate(folder_.path("project/hole.jpg").c_str(), 10'000'000'000), 0);
    ASSERT_EQ(mkfifo(folder_.path("project/pipe").c_str(), 0600), 0);
    const std::string gone = folder_.file("project/gone.png");
    const long before = resident_bytes();
    bool is_open_still = false;
    in_preview_menu("bomb.png", [&](Steps& steps) {
        const auto has_ended = [this] {
            return is_open(2) && preview_item() && ![preview_item() view];
        };
        std::string shown = "bomb.png";
        for (const std::string& name : {"cut.png", "hole.jpg", "pipe", "gone.png", "b.txt"}) {
            steps
                .when("the end of " + shown, has_ended,
                      [this, name, gone] {
                          if (name == "gone.png") unlink(gone.c_str());
                          hover(name);
                      })
                .when("the row of " + name,
                      [this, name] { return highlighted(1) == name && is_open(2); });
            shown = name;
        }
        steps.when(
            "the good file's picture", [] { return has_picture(); },
            [&] {
                is_open_still = is_open(1);
                escape();
            });
    });
    EXPECT_TRUE(is_open_still);
    EXPECT_LT(resident_bytes() - before, most_growth);
}

TEST_F(Preview, AMenuThatClosesAtOnceDoesNoHarm) {
    for (int i = 0; i < 5; i++) {
        in_preview_menu("a.txt", [&](Steps& steps) {
            steps.when(
                "the preview", [] { return preview_item() != nil; }, [&] { escape(); });
        });
    }
    // The results still arrive.
    EXPECT_EQ(picture_size("b.txt").width, 256);
}

TEST_F(Preview, RestingOnAFileShowsTheHoverWindowAfterTheSetDelay) {
    double waited = 0;
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return is_hovering(); },
                [&] { waited = now() - last_movement(); })
            .when(
                "the picture", [] { return shows_picture(); }, [&] { escape(); });
    });
    EXPECT_GT(waited, 0.3);
    EXPECT_EQ(hovered_path(), folder_.path("project/a.txt"));
}

TEST_F(Preview, TheNextFileFollowsAfterAThirdOfASecond) {
    set_preference("hoverPreviewsInterval", "2000");
    double first_delay = 0, next_delay = 0;
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the timer", [] { return pending_timer() != nil; },
                [&] { first_delay = pending_delay(); })
            .when(
                "the window", [] { return shows_picture(); }, [&] { hover("b.txt"); })
            .when(
                "the next timer", [] { return pending_timer() != nil; },
                [&] { next_delay = pending_delay(); })
            .when(
                "the next picture",
                [&] { return hovered_path() == folder_.path("project/b.txt") && shows_picture(); },
                [&] { escape(); });
    });
    EXPECT_NEAR(first_delay, 2, 0.1);
    EXPECT_NEAR(next_delay, 0.35, 0.1);
}

TEST_F(Preview, AFolderShowsNoHoverWindow) {
    set_preference("hoverPreviewsInterval", "3000");  // long enough to be seen to run
    bool shown = true;
    resting_on("inner", [&](Steps& steps) {
        steps.when("the wait", [] { return pending_timer() != nil; })
            .when(
                "its end", [] { return pending_timer() == nil; },
                [&] {
                    shown = is_hovering();
                    escape();
                });
    });
    EXPECT_FALSE(shown);
}

TEST_F(Preview, SwitchedOffThereIsNoHoverWindow) {
    set_preference("hoverPreviews", "0");
    bool waits = true;
    resting_on("a.txt", [&](Steps& steps) {
        steps.when(
            "the row", [] { return true; },
            [&] {
                waits = pending_timer() != nil;
                escape();
            });
    });
    set_preference("hoverPreviews", "1");
    EXPECT_FALSE(waits);
}

// Wide levels reach under the window's place on the right; rows above them reach its lower half.
TEST_F(Preview, TheWindowKeepsOutOfThePointersWay) {
    const std::string outer = "outer with a long name", inner = "inner with a long name";
    folder_.file("project/" + outer + "/" + inner + "/c.txt", "The third text\n");
    for (int i = 0; i < 5; i++) folder_.folder("project/folder" + std::to_string(i));
    NSRect first = NSZeroRect, second = NSZeroRect, third = NSZeroRect;
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    const CGFloat side = 512 + 16;  // with the frame
    const CGFloat left = NSMinX(screen), right = NSMaxX(screen) - side;
    const CGFloat bottom = NSMinY(screen), top = NSMaxY(screen) - side;
    const auto stands_at = [](CGFloat x, CGFloat y) {
        return NSEqualPoints([hover_window() frame].origin, NSMakePoint(x, y));
    };
    set_preference("preview_beside_menu", "0");
    [hover_window() setFrameOrigin:NSZeroPoint];  // undoes the effects of other tests
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture(); },
                [&] {
                    first = [hover_window() frame];
                    hover("project");
                })
            .when(
                "its move to the right", [=] { return stands_at(right, top); },
                [&] {
                    second = [hover_window() frame];
                    hover(outer);
                })
            .when(
                "the next level", [&] { return is_open(2); }, [&] { hover(inner); })
            .when(
                "the last level", [&] { return is_open(3); }, [&] { hover("c.txt"); })
            .when(
                "its move to the left", [=] { return stands_at(left, bottom); },
                [&] {
                    third = [hover_window() frame];
                    escape();
                });
    });
    set_preference("preview_beside_menu", "1");
    EXPECT_TRUE(NSEqualRects(first, NSMakeRect(0, 0, side, side)));
    EXPECT_TRUE(NSEqualRects(second, NSMakeRect(right, top, side, side))) << "of the upper half";
    EXPECT_TRUE(NSEqualRects(third, NSMakeRect(left, bottom, side, side))) << "of the lower half";
}

TEST_F(Preview, InACornerTheWindowHasAFrameAroundItsPictureAndShowsNothingBesides) {
    picture("project/0.png", 1000, 400);
    set_preference("preview_beside_menu", "0");
    const NSRect screen = [[NSScreen mainScreen] frame];
    // The picture is 512 by 205 pixels, in the middle of the window.
    const auto colour_at = [&](int left, int above_middle) {
        const NSRect frame = [hover_window() frame];
        return input().pixel(static_cast<int>(NSMinX(frame)) + left,
                             static_cast<int>(NSMaxY(screen) - NSMidY(frame)) - above_middle);
    };
    // In the first corner the pointer is in the window's way.
    const auto is_in_right_corner = [&] {
        const NSRect frame = [hover_window() frame];
        return NSMaxX(frame) == NSMaxX(screen) &&
               (NSMinY(frame) == 0 || NSMaxY(frame) == NSMaxY(screen));
    };
    unsigned long border = 0, above = 0;
    resting_on("0.png", [&](Steps& steps) {
        steps.when("the window", [] { return shows_picture(); })
            .when(
                "its colour", [&] { return is_in_right_corner() && colour_at(40, 0) == 0xff0000; },
                [&] {
                    border = colour_at(4, 0);
                    above = colour_at(40, 140);
                    escape();
                });
    });
    set_preference("preview_beside_menu", "1");
    EXPECT_NE(border, 0xff0000u);
    EXPECT_NE(border, 0u);
    EXPECT_EQ(above, 0u) << "nothing covers the empty screen";
}

// The windows of the menu, and what the preview beside it shows.
class BesideTheMenu : public Preview {
  protected:
    void TearDown() override {
        [[NSUserDefaults standardUserDefaults] removeObjectForKey:@"GSScaleFactor"];
        Preview::TearDown();
    }
    static NSArray* level_frames() {
        NSMutableArray* frames = [NSMutableArray array];
        for (NSWindow* window in [NSApp windows]) {
            if ([window isVisible] && [window level] == NSPopUpMenuWindowLevel) {
                [frames addObject:[NSValue valueWithRect:[window frame]]];
            }
        }
        return frames;
    }
    static bool is_clear_of_levels() {
        for (NSValue* frame in level_frames()) {
            if (NSIntersectsRect([frame rectValue], [hover_window() frame])) return false;
        }
        return [level_frames() count] > 0;
    }
    // The part of the window that shows the picture, in pixels of the screen.
    static NSSize shown_size() {
        NSView* content = [hover_window() contentView];
        const double scale = NSWidth([hover_window() frame]) / NSWidth([content bounds]);
        const NSSize size = [[image_view() image] size];
        return NSMakeSize(std::round(size.width * scale), std::round(size.height * scale));
    }
    static NSInteger pixels_wide() {
        return [[[[image_view() image] representations] objectAtIndex:0] pixelsWide];
    }
};

TEST_F(BesideTheMenu, TheWindowHugsItsPictureAndIsClearOfAllLevels) {
    picture("project/red.png", 1000, 400);
    NSSize shown = NSZeroSize, frame = NSZeroSize;
    bool clear = false;
    unsigned long border = 0, inner = 0;
    resting_on("red.png", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture(); }, [&] {})
            .when(
                "its colour",
                [&] {
                    const NSRect at = [hover_window() frame];
                    const int top =
                        static_cast<int>(NSHeight([[NSScreen mainScreen] frame]) - NSMaxY(at));
                    border = input().pixel(static_cast<int>(NSMinX(at)) + 5, top + 40);
                    inner = input().pixel(static_cast<int>(NSMinX(at)) + 40, top + 40);
                    return inner == 0xff0000 && NSWidth(at) < 600;
                },
                [&] {
                    shown = shown_size();
                    frame = [hover_window() frame].size;
                    clear = is_clear_of_levels();
                    escape();
                });
    });
    EXPECT_TRUE(clear);
    EXPECT_EQ(shown.width, 512);
    EXPECT_EQ(shown.height, 205);
    EXPECT_EQ(frame.width, 512 + 16);
    EXPECT_EQ(frame.height, 205 + 16);
    EXPECT_NE(border, 0xff0000u);
}

TEST_F(BesideTheMenu, ALineBelowThePictureSaysWhichFileItIsIfItIsSetSo) {
    picture("project/red.png", 1000, 400);
    set_preference("preview_details", "1");
    NSSize frame = NSZeroSize;
    int ink = 0;
    resting_on("red.png", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture(); }, [&] {})
            .when(
                "its line",
                [&] {
                    const NSRect at = [hover_window() frame];
                    const int bottom =
                        static_cast<int>(NSHeight([[NSScreen mainScreen] frame]) - NSMinY(at));
                    ink = 0;
                    const int left = static_cast<int>(NSMinX(at));
                    for (const unsigned long color :
                         input().pixels(left + 8, bottom - 24, 60, 16)) {
                        ink += (color & 255) < 120 && (color >> 16 & 255) < 120;
                    }
                    return ink > 20;
                },
                [&] {
                    frame = [hover_window() frame].size;
                    escape();
                });
    });
    set_preference("preview_details", "0");
    EXPECT_EQ(frame.width, 512 + 16);
    EXPECT_EQ(frame.height, 205 + 16 + 22);
    EXPECT_GT(ink, 20);
}

TEST_F(BesideTheMenu, ASmallPictureKeepsItsSizeInAFrame) {
    picture("project/red.png", 20, 10);
    int red = 0;
    unsigned long frame = 0, ground = 0;
    resting_on("red.png", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture(); }, [&] {})
            .when(
                "its colour",
                [&] {
                    const NSRect at = [hover_window() frame];
                    const int left = static_cast<int>(NSMinX(at));
                    const int top =
                        static_cast<int>(NSHeight([[NSScreen mainScreen] frame]) - NSMaxY(at));
                    const int width = static_cast<int>(NSWidth(at));
                    const auto colors =
                        input().pixels(left, top, width, static_cast<int>(NSHeight(at)));
                    const auto first = std::find(colors.begin(), colors.end(), 0xff0000ul);
                    red = static_cast<int>(std::count(first, colors.end(), 0xff0000ul));
                    if (first - colors.begin() < 4 * width) return false;
                    frame = *(first + 10 - width);
                    ground = *(first + 10 - 4 * width);
                    return red == 20 * 10 && frame != ground;
                },
                [&] { escape(); });
    });
    EXPECT_EQ(red, 20 * 10);
    EXPECT_NE(frame, ground);
    EXPECT_NE(frame, 0xff0000u);
}

// The pointer does not move.
TEST_F(BesideTheMenu, TheKeysHighlightShowsTheWindowToo) {
    std::string first, second;
    const auto key_leads_to = [this](Steps& steps, const char* key, size_t level,
                                     const std::string& row) {
        steps
            .when(
                "the time for " + row, [] { return true; }, [this, key] { input().key(key); })
            .when("the row " + row, [this, level, row] { return highlighted(level) == row; });
    };
    pop_up([&](Steps& steps) {
        steps.when("the menu", [&] { return is_open(0); });
        key_leads_to(steps, "Down", 0, "project");
        key_leads_to(steps, "Right", 1, "inner");
        key_leads_to(steps, "Down", 1, "a.txt");
        steps.when(
            "the picture", [] { return shows_picture() && is_clear_of_levels(); },
            [&] { first = hovered_path(); });
        key_leads_to(steps, "Down", 1, "b.txt");
        steps.when(
            "the next picture",
            [&] { return hovered_path() == folder_.path("project/b.txt") && shows_picture(); },
            [&] {
                second = highlighted(1);
                escape();
            });
    });
    EXPECT_EQ(first, folder_.path("project/a.txt"));
    EXPECT_EQ(second, "b.txt");
}

TEST_F(BesideTheMenu, TheProgramsOwnMovesAreIgnored) {
    NSRect before = NSZeroRect, after = NSZeroRect;
    resting_on("a.txt", [&](Steps& steps) {
        steps.when(
            "the window", [] { return shows_picture() && is_clear_of_levels(); },
            [&] {
                before = [hover_window() frame];
                [hover_window() setFrame:NSMakeRect(0, 0, 512, 512) display:YES animate:YES];
                after = [hover_window() frame];
                escape();
            });
    });
    EXPECT_TRUE(NSEqualRects(before, after));
}

TEST_F(BesideTheMenu, TheWindowMakesWayForALevelThatOpens) {
    folder_.file("project/inner/c.txt", "The third text\n");
    int levels = 0;
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture() && is_clear_of_levels(); },
                [&] { hover("inner"); })
            .when(
                "the next level", [&] { return is_open(2) && is_clear_of_levels(); },
                [&] {
                    levels = static_cast<int>([level_frames() count]);
                    escape();
                });
    });
    EXPECT_EQ(levels, 3);
}

TEST_F(BesideTheMenu, OnAScreenOfTwiceThePixelsThePictureHasTwiceAsMany) {
    picture("project/red.png", 3000, 1000);
    [[NSUserDefaults standardUserDefaults] setDouble:2 forKey:@"GSScaleFactor"];
    NSInteger pixels = 0;
    NSSize points = NSZeroSize;
    bool clear = false, within = false;
    resting_on("red.png", [&](Steps& steps) {
        steps.when(
            "the window", [] { return shows_picture() && pixels_wide() > 512; },
            [&] {
                pixels = pixels_wide();
                points = [[image_view() image] size];
                clear = is_clear_of_levels();
                within = NSContainsRect([[NSScreen mainScreen] frame], [hover_window() frame]);
                escape();
            });
    });
    EXPECT_EQ(pixels, 1024);
    EXPECT_EQ(points.width, 512);
    EXPECT_TRUE(clear && within);
}

TEST_F(Preview, TheWindowHidesWithTheMenu) {
    resting_on("a.txt", [&](Steps& steps) {
        steps.when(
            "the window", [] { return shows_picture(); }, [&] { escape(); });
    });
    EXPECT_FALSE(is_hovering());
    EXPECT_EQ(pending_timer(), nil);
    steps() = Steps();
    steps().when("the window's end", [] { return ![hover_window() isVisible]; });
    steps().run();
}

TEST_F(Preview, TheWindowHidesOverTheHostsItems) {
    bool hidden = false;
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture(); }, [&] { hover("Open"); })
            .when(
                "its end", [] { return !is_hovering(); },
                [&] {
                    hidden = true;
                    escape();
                });
    });
    EXPECT_TRUE(hidden);
}

TEST_F(Preview, TheSameFileAgainShowsItsPictureAtOnce) {
    for (int i = 0; i < 2; i++) {
        resting_on("a.txt", [&](Steps& steps) {
            steps.when(
                "the picture", [] { return shows_picture(); }, [&] { escape(); });
        });
    }
    EXPECT_EQ(hovered_path(), folder_.path("project/a.txt"));
}
