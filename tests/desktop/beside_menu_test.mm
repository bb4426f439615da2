// The hover window beside the deepest open level: its place, its size and its pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "desktop/preview_desk.h"

namespace {

using test::Preview;
using test::Steps;

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
    unsigned long border = 0;
    const auto is_drawn = [this] {
        const Place at = hover_place();
        return input().pixel(at.left + 40, at.top + 40) == 0xff0000 && at.width < 600;
    };
    showing("red.png", is_drawn, [&] {
        border = input().pixel(hover_place().left + 5, hover_place().top + 40);
        shown = shown_size();
        frame = [hover_window() frame].size;
        clear = is_clear_of_levels();
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
    const auto is_dark = [](unsigned long color) {
        return (color & 255) < 120 && (color >> 16 & 255) < 120;
    };
    const auto has_letters = [&] {
        const Place at = hover_place();
        const auto colors = input().pixels(at.left + 8, at.top + at.height - 24, 60, 16);
        return std::count_if(colors.begin(), colors.end(), is_dark) > 20;
    };
    showing("red.png", has_letters, [&] { frame = [hover_window() frame].size; });
    set_preference("preview_details", "0");
    EXPECT_EQ(frame.width, 512 + 16);
    EXPECT_EQ(frame.height, 205 + 16 + 22);
}

TEST_F(BesideTheMenu, ASmallPictureKeepsItsSizeInAFrame) {
    picture("project/red.png", 20, 10);
    long red = 0;
    unsigned long frame = 0, ground = 0;
    const auto is_framed = [&] {
        const Place at = hover_place();
        const auto colors = input().pixels(at.left, at.top, at.width, at.height);
        const auto first = std::find(colors.begin(), colors.end(), 0xff0000ul);
        red = std::count(first, colors.end(), 0xff0000ul);
        if (first - colors.begin() < 4 * at.width) return false;
        frame = *(first + 10 - at.width);
        ground = *(first + 10 - 4 * at.width);
        return red == 20 * 10 && frame != ground;
    };
    showing("red.png", is_framed, [] {});
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
    showing("a.txt", is_clear_of_levels, [&] {
        before = [hover_window() frame];
        [hover_window() setFrame:NSMakeRect(0, 0, 512, 512) display:YES animate:YES];
        after = [hover_window() frame];
    });
    EXPECT_TRUE(NSEqualRects(before, after));
}

TEST_F(BesideTheMenu, TheWindowMakesWayForALevelThatOpens) {
    folder_.file("project/inner/c.txt", "The third text\n");
    NSUInteger levels = 0;
    resting_on("a.txt", [&](Steps& steps) {
        steps
            .when(
                "the window", [] { return shows_picture() && is_clear_of_levels(); },
                [&] { hover("inner"); })
            .when(
                "the next level", [&] { return is_open(2) && is_clear_of_levels(); },
                [&] {
                    levels = [level_frames() count];
                    escape();
                });
    });
    EXPECT_EQ(levels, 3u);
}

TEST_F(BesideTheMenu, APictureThatWouldBeTinyLiesOverTheLevelsBeforeTheDeepest) {
    picture("project/red.png", 1000, 1000);
    folder_.file("project/a name that makes its level wide.txt");
    folder_.folder("another folder with a name that is long");
    select({folder_.path("project"), folder_.path("another folder with a name that is long")});
    [[NSUserDefaults standardUserDefaults] setDouble:2.5 forKey:@"GSScaleFactor"];
    NSArray* frames = nil;
    NSRect hover = NSZeroRect;
    showing(
        "red.png", [] { return NSHeight([hover_window() frame]) > 500; },
        [&] {
            frames = [level_frames() retain];
            hover = [hover_window() frame];
        });
    ASSERT_EQ([frames count], 2u);
    int covered = 0;
    for (NSValue* frame in frames) covered += NSIntersectsRect([frame rectValue], hover);
    EXPECT_EQ(covered, 1) << [[frames description] UTF8String] << " "
                          << [NSStringFromRect(hover) UTF8String];
    EXPECT_TRUE(NSContainsRect([[NSScreen mainScreen] frame], hover));
    [frames release];
}

// The old picture would stand at another place than the new one, on black.
TEST_F(BesideTheMenu, APictureOfAnotherSizeComesWithoutAFade) {
    picture("project/wide.png", 500, 200);
    picture("project/high.png", 200, 500);
    bool fades = true;
    unsigned long ground = 0;
    const auto has_size = [](double width, double height) {
        return shows_picture() && std::abs(NSWidth([hover_window() frame]) - width) < 20 &&
               std::abs(NSHeight([hover_window() frame]) - height) < 20;
    };
    resting_on("wide.png", [&](Steps& steps) {
        steps
            .when(
                "the wide one", [&] { return has_size(516, 216); }, [&] { hover("high.png"); })
            .when(
                "the high one", [&] { return has_size(216, 516); },
                [&] {
                    fades = false;
                    for (NSView* view in [[hover_window() contentView] subviews]) {
                        fades = fades || [view isKindOfClass:NSClassFromString(@"ViewFade")];
                    }
                    ground = input().pixel(hover_place().left + 4, hover_place().top + 4);
                    escape();
                });
    });
    EXPECT_FALSE(fades);
    EXPECT_NE(ground, 0u);
}

TEST_F(BesideTheMenu, OnAScreenOfTwiceThePixelsThePictureHasTwiceAsMany) {
    picture("project/red.png", 3000, 1000);
    [[NSUserDefaults standardUserDefaults] setDouble:2 forKey:@"GSScaleFactor"];
    NSInteger pixels = 0;
    NSSize points = NSZeroSize;
    bool clear = false, within = false;
    const auto is_sharp = [] { return pixels_wide() > 512; };
    showing("red.png", is_sharp, [&] {
        pixels = pixels_wide();
        points = [[image_view() image] size];
        clear = is_clear_of_levels();
        within = NSContainsRect([[NSScreen mainScreen] frame], [hover_window() frame]);
    });
    EXPECT_EQ(pixels, 1024);
    EXPECT_EQ(points.width, 512);
    EXPECT_TRUE(clear && within);
}

}  // namespace
