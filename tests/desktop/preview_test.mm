// Pictures of files in an open menu: the preview submenu behind Option, and the hover window.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdio.h>
#include <unistd.h>

#include <cmath>

#include "desktop/preview_desk.h"
#include "platform/quicklook/sample_files.h"

namespace {

using test::Preview;
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
