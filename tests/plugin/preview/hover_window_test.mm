#include "preview/DVPreviewWindowController.h"

#include <QuartzCore/QuartzCore.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>

#include "finder/dv_finder.h"
#include "items/DVCircularProgressView.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Proxy.h"
#include "plugin/menu_fixture.h"
#include "plugin/preview/images_alive.h"
#include "plugin/replaced_method.h"
#include "preview/DVDelvio+HoverPreview.h"
#include "preview/NSWindow+Fading.h"
#include "support/dv_log.h"
#include "tree/dv_tree.h"

namespace {

class HoverWindow : public test::MenuTest {
  protected:
    HoverWindow() : window_controller_([[DVPreviewWindowController alloc] init]) {}
    ~HoverWindow() override {
        finish();
        [window_controller_ hidePreviewWindow:nil];
        [window_controller_ release];
    }

    NSWindow* window() { return [window_controller_ valueForKey:@"window"]; }
    NSView* content() { return [window() contentView]; }
    NSImageView* image_view() { return [window_controller_ valueForKey:@"imgView"]; }
    NSView* progress() { return [window_controller_ valueForKey:@"progress"]; }
    NSTimer* timer() { return [window_controller_ valueForKey:@"progressTimer"]; }
    int productions() { return [[window_controller_ valueForKey:@"production"] intValue]; }
    bool is_busy() {
        return productions() != [[window_controller_ valueForKey:@"produced"] intValue];
    }
    template <typename condition>
    void run_until(condition done) {
        while (!done()) {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        }
    }
    // Waits for the picture in the making.
    void finish() {
        run_until([this] { return !is_busy(); });
    }
    NSURL* url(const std::string& path) { return [NSURL fileURLWithPath:test::string_of(path)]; }

    DVPreviewWindowController* window_controller_;
};

}  // namespace

TEST_F(HoverWindow, StandsAboveMenusClearAndWithoutABorder) {
    EXPECT_TRUE(NSEqualRects([window() frame], NSMakeRect(0, 0, 512, 512)));
    EXPECT_EQ([window() styleMask], static_cast<NSUInteger>(NSBorderlessWindowMask));
    EXPECT_FALSE([window() isOpaque]);
    EXPECT_EQ([[window() backgroundColor] alphaComponent], 0);
    EXPECT_EQ([window() level], CGWindowLevelForKey(11) + 1);
    EXPECT_TRUE(NSEqualRects([image_view() frame], NSMakeRect(0, 0, 512, 512)));
    EXPECT_TRUE(NSEqualRects([progress() frame], NSMakeRect(192, 192, 128, 128)));
    EXPECT_EQ([image_view() imageFrameStyle], NSImageFrameNone);
    EXPECT_EQ([image_view() imageScaling], 0u) << "in proportion";
    EXPECT_EQ([image_view() imageAlignment], NSImageAlignCenter);
    EXPECT_FALSE([image_view() isEditable]);
    EXPECT_EQ([[content() subviews] count], 0u);
    EXPECT_FALSE([window_controller_ isVisible]);
}

TEST_F(HoverWindow, AFileGivesADiscAndThenItsPicture) {
    NSURL* file = url(folder_.file("text", test::plain_bytes));
    const std::string log = log_of([&] {
        [window_controller_ setPath:file];
        EXPECT_EQ([progress() superview], content());
        EXPECT_TRUE([timer() isValid]);
        EXPECT_NEAR([timer() timeInterval], 1.0 / 30, 1e-6);
        finish();
    });
    test::expect_lines(
        log, {std::string("Delvio: Set preview path: ") + [[file description] UTF8String],
              "Delvio: Generating new preview..", "Delvio: Generating preview image",
              "Delvio: Falling back to old-skool text preview", "Delvio: Got preview image"});
    EXPECT_EQ([image_view() superview], content());
    EXPECT_EQ([progress() superview], nil);
    EXPECT_TRUE(NSEqualSizes([[image_view() image] size], NSMakeSize(256, 256)));
    EXPECT_EQ(timer(), nil);
}

TEST_F(HoverWindow, ItsTimerRedrawsTheDisc) {
    [window_controller_ setPath:url(folder_.file("text", test::plain_bytes))];
    ASSERT_TRUE(is_busy()) << "its end comes in a turn of the run loop";
    [progress() setNeedsDisplay:NO];
    [timer() fire];
    EXPECT_TRUE([progress() needsDisplay]);
}

TEST_F(HoverWindow, ShownBeforeAnyFileItHasNoDisc) {
    [window_controller_ showPreviewWindow:nil];
    [window_controller_ hidePreviewWindow:nil];
    [content() addSubview:progress()];
    [window_controller_ showPreviewWindow:nil];
    EXPECT_EQ([progress() superview], content()) << "there is no picture to take its place";
}

TEST_F(HoverWindow, APicturesImageIsReleasedAlsoWhenAnotherHasOvertakenIt) {
    const int before = test::images_alive();
    for (const char* name : {"one", "two", "three"}) {
        [window_controller_ setPath:url(folder_.file(name, test::plain_bytes))];
    }
    finish();
    run_until([=] { return test::images_alive() == before; });
}

TEST_F(HoverWindow, TheSameFileAgainBeginsNoNewPicture) {
    const std::string path = folder_.file("text", test::plain_bytes);
    [window_controller_ setPath:url(path)];
    [window_controller_ setPath:url(path)];
    EXPECT_EQ(productions(), 1);
}

TEST_F(HoverWindow, FoldersMissingFilesAndNothingBeginNoPicture) {
    [window_controller_ setPath:url(folder_.folder("dir"))];
    [window_controller_ setPath:url(folder_.path("gone"))];
    [window_controller_ setPath:nil];
    EXPECT_EQ(productions(), 0);
    EXPECT_EQ([window_controller_ path], nil);
}

TEST_F(HoverWindow, TheLastOfSeveralFilesIsShown) {
    dv_->preview_size = 64;
    for (int i = 0; i < 20; i++) {
        [window_controller_
            setPath:url(folder_.file("text" + std::to_string(i), test::plain_bytes))];
    }
    EXPECT_EQ(productions(), 20);
    finish();
    EXPECT_EQ([image_view() superview], content());
    EXPECT_EQ(timer(), nil);
}

TEST_F(HoverWindow, AFileWithoutAPictureKeepsTheOneBefore) {
    [window_controller_ setPath:url(folder_.file("text", test::plain_bytes))];
    finish();
    NSImage* before = [image_view() image];
    ASSERT_NE(before, nil);
    dv_->preview_size = 0;  // no square can be made
    [window_controller_ setPath:url(folder_.file("other", test::plain_bytes))];
    finish();
    EXPECT_EQ([image_view() image], before);
    EXPECT_EQ([image_view() superview], content());
}

TEST_F(HoverWindow, SubviewsFadeForHalfASecond) {
    [window_controller_ configureAnimationsForView:content()];
    CATransition* transition = [[content() animations] objectForKey:@"subviews"];
    EXPECT_EQ([transition type], kCATransitionFade);
    EXPECT_EQ([transition subtype], kCATransitionFromLeft);
    EXPECT_EQ([transition duration], 0.5);
}

TEST_F(HoverWindow, HidingIsForAWindowThatIsShown) {
    [window_controller_ hidePreviewWindow:nil];
    [window_controller_ showPreviewWindow:nil];
    EXPECT_TRUE([window_controller_ isVisible]);
    EXPECT_TRUE([window() isVisible]);
    [window_controller_ hidePreviewWindow:nil];
    EXPECT_FALSE([window_controller_ isVisible]);
    EXPECT_TRUE([window() isVisible]) << "for a second, unseen";
    EXPECT_EQ([window() alphaValue], 0);
    run_until([this] { return ![window() isVisible]; });
}

TEST_F(HoverWindow, APendingOrderOutRunsAlthoughTheWindowIsShownAgain) {
    [window_controller_ showPreviewWindow:nil];
    [window_controller_ hidePreviewWindow:nil];
    [window_controller_ showPreviewWindow:nil];
    EXPECT_TRUE([window() isVisible]);
    run_until([this] { return ![window() isVisible]; });
    EXPECT_TRUE([window_controller_ isVisible]);
}

TEST_F(HoverWindow, ShownAgainForTheSameFileItHasItsPicture) {
    [window_controller_ setPath:url(folder_.file("text", test::plain_bytes))];
    finish();
    [window_controller_ showPreviewWindow:nil];  // no file is highlighted
    EXPECT_EQ([image_view() superview], content());
}

TEST_F(HoverWindow, ShownAgainWhileItsPictureIsMadeItsDiscTurnsOn) {
    [window_controller_ showPreviewWindow:nil];  // no file is highlighted
    [window_controller_ setPath:url(folder_.file("text", test::plain_bytes))];
    [window_controller_ hidePreviewWindow:nil];
    EXPECT_EQ(timer(), nil);
    ASSERT_TRUE(is_busy()) << "its end comes in a turn of the run loop";
    [window_controller_ showPreviewWindow:nil];
    EXPECT_TRUE([timer() isValid]);
}

TEST_F(HoverWindow, TheHoveredFileIsThatOfTheHighlightedItem) {
    EXPECT_EQ([controller_ previewItemURL], nil);
    const std::string path = folder_.file("text");
    NSMenu* menu = select({path});
    NSMenuItem* item = test::item_titled(menu, "text");
    [controller_ menu:menu willHighlightItem:item];
    EXPECT_STREQ([[[controller_ previewItemURL] path] UTF8String], path.c_str());
    [controller_ menu:menu willHighlightItem:nil];
    EXPECT_EQ([controller_ previewItemURL], nil);
}

TEST_F(HoverWindow, AnItemThatHasGoneWithItsMenuIsNotLookedAt) {
    NSMenu* menu = select({folder_.file("text")});
    [controller_ menu:menu willHighlightItem:test::item_titled(menu, "text")];
    release();
    take_over();
    EXPECT_EQ([controller_ previewItemURL], nil);
}

TEST_F(HoverWindow, AnItemWithoutATextAsItsPathHasNoUrl) {
    NSMenu* menu = take_over();
    dv_tree_t* bad = dv_create_elem(dv_create_folder_dir("/tmp/"), "\xff", 1, 0);
    DVMenuItem* item = [[DVMenuItem alloc] initWithTree:bad
                                                 target:controller_
                                                  title:@"bad"
                                               useImage:NO];
    [controller_ menu:menu willHighlightItem:item];
    EXPECT_EQ([controller_ previewItemURL], nil);
    [controller_ menu:menu willHighlightItem:nil];
    [item release];
    dv_free_elem(bad);
}

TEST_F(HoverWindow, AMovementOutsideAnyMenuMovesNothing) {
    [window_controller_ showPreviewWindow:nil];
    const NSRect before = [window() frame];
    [controller_ handleMouseMovedForPreviewWindow];
    EXPECT_TRUE(NSEqualRects([window() frame], before));
}

TEST_F(HoverWindow, ThePanelsQuestionsHaveTheirAnswers) {
    EXPECT_EQ([controller_ numberOfPreviewItemsInPreviewPanel:nil], 1);
    EXPECT_EQ([controller_ previewPanel:nil previewItemAtIndex:0], controller_);
    EXPECT_TRUE([controller_ previewPanel:nil handleEvent:nil]);
    EXPECT_TRUE(NSEqualRects([controller_ previewPanel:nil sourceFrameOnScreenForPreviewItem:nil],
                             NSZeroRect));
}

TEST_F(HoverWindow, AMovementOutsideAnyMenuStartsNoTimer) {
    [controller_ dvPointerMoved];
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
}

namespace {

// Tests of resting on a file in a menu that was taken over.
class Resting : public HoverWindow {
  protected:
    Resting() : preview_([controller_ valueForKey:@"previewWindowController"]) {
        path_ = folder_.file("text", test::plain_bytes);
    }
    ~Resting() override {
        [controller_ removeMenuAndDelegate];
        run_until(
            [this] { return number(preview_, @"production") == number(preview_, @"produced"); });
    }
    static int number(id object, NSString* key) { return [[object valueForKey:key] intValue]; }
    void highlight(const std::string& path) {
        NSMenu* menu = select({path});
        [controller_ menu:menu willHighlightItem:[menu itemAtIndex:0]];
    }
    // The timer fires this long after the last movement.
    std::string fire_after(double seconds, int level = 1) {
        const double last = dv_double_time() - seconds;
        [controller_ setValue:[NSNumber numberWithDouble:last] forKey:@"lastMouseMovement"];
        return log_of([this] { [controller_ showPreviewWindow:(NSTimer*)nil]; }, level);
    }
    // The time from the movement to its timer: the shortest of several, because a busy machine may
    // pause.
    double timers_delay() {
        double shortest = 1e9;
        for (int i = 0; i < 50; i++) {
            [controller_ dvPointerMoved];
            NSTimer* next = [controller_ valueForKey:@"hoverPreviewTimer"];
            const double moved = [[controller_ valueForKey:@"lastMouseMovement"] doubleValue];
            shortest = std::min(shortest, [[next fireDate] timeIntervalSince1970] - moved);
        }
        return shortest;
    }
    bool is_shown() { return [preview_ isVisible]; }

    DVPreviewWindowController* preview_;
    std::string path_;
};

const char showing[] = "Delvio: Showing preview window..";

}  // namespace

TEST_F(Resting, AFileIsShownOnceTheDelayHasPassed) {
    set("hoverPreviewsInterval", 50000);
    highlight(path_);
    EXPECT_EQ(fire_after(20).find(showing), std::string::npos);
    EXPECT_FALSE(is_shown());
    test::expect_lines(fire_after(50.1), {showing});
    EXPECT_TRUE(is_shown());
    EXPECT_STREQ([[[preview_ path] path] UTF8String], path_.c_str());
}

TEST_F(Resting, AFileIsShownWithoutALineWhereNothingIsLogged) {
    set("hoverPreviewsInterval", 10);
    highlight(path_);
    EXPECT_EQ(fire_after(1, 0), "");
    EXPECT_TRUE(is_shown());
}

TEST_F(Resting, TheTimerThatFiresIsForgotten) {
    set("hoverPreviewsInterval", 100000);
    highlight(path_);
    [controller_ dvPointerMoved];
    NSTimer* timer = [controller_ valueForKey:@"hoverPreviewTimer"];
    ASSERT_NE(timer, nil);
    NSTimer* another = [NSTimer timerWithTimeInterval:1
                                               target:controller_
                                             selector:@selector(showPreviewWindow:)
                                             userInfo:nil
                                              repeats:NO];
    [controller_ showPreviewWindow:another];
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], timer);
    [controller_ showPreviewWindow:timer];
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
    [timer invalidate];
}

TEST_F(Resting, TheDelayIsShortWhileTheWindowIsShown) {
    set("hoverPreviewsInterval", 100000);
    highlight(path_);
    [preview_ showPreviewWindow:nil];
    test::expect_lines(fire_after(0.36), {showing});
    // A busy machine may need longer than the rest of the delay, but not every time.
    int shown = 0, tries = 0;
    while (shown == tries && tries < 200) {
        tries++;
        if (fire_after(0.32).find(showing) != std::string::npos) shown++;
    }
    EXPECT_LT(shown, tries);
}

TEST_F(Resting, TheTimerWaitsForTheSettingOrWhileTheWindowIsShownAThirdOfASecond) {
    set("hoverPreviewsInterval", 1500);
    highlight(path_);
    EXPECT_NEAR(timers_delay(), 1.5, 0.02);
    [preview_ showPreviewWindow:nil];
    EXPECT_NEAR(timers_delay(), 0.35, 0.02);
}

TEST_F(Resting, FoldersMissingFilesAndNoItemAreNotShown) {
    set("hoverPreviewsInterval", 10);
    highlight(folder_.folder("dir"));
    EXPECT_EQ(fire_after(1).rfind("Delvio: Will show preview window? 1 1 && ", 0), 0u);
    release();
    highlight(path_);
    unlink(path_.c_str());
    EXPECT_EQ(fire_after(1).rfind("Delvio: Will show preview window? 0 0 && ", 0), 0u);
    [controller_ menu:host_menu_ willHighlightItem:nil];
    fire_after(1);
    EXPECT_FALSE(is_shown());
}

TEST_F(Resting, TheDecisionIsLoggedWithItsTimes) {
    set("hoverPreviewsInterval", 10);
    highlight(path_);
    const std::string log = fire_after(1);
    int folder = -1, exists = -1, passed = -1;
    double now = 0, last = 0;
    ASSERT_EQ(sscanf(log.c_str(), "Delvio: Will show preview window? %d %d && %lf %lf => %d\n",
                     &folder, &exists, &now, &last, &passed),
              5)
        << log;
    EXPECT_EQ(folder, 0);
    EXPECT_EQ(exists, 1);
    EXPECT_EQ(passed, 1);
    EXPECT_GE(now - last, 1);
    EXPECT_NEAR(last, [[controller_ valueForKey:@"lastMouseMovement"] doubleValue], 1e-5);
}

TEST_F(Resting, SwitchedOffNothingIsShownAndNoTimerStarts) {
    set("hoverPreviews", 0);
    set("hoverPreviewsInterval", 10);
    highlight(path_);
    EXPECT_EQ(fire_after(1), "");
    [controller_ dvPointerMoved];
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
    EXPECT_FALSE(is_shown());
}

TEST_F(Resting, WithoutAMenuNothingIsShown) {
    set("hoverPreviewsInterval", 10);
    highlight(path_);
    release();
    EXPECT_EQ(fire_after(1), "");
    EXPECT_FALSE(is_shown());
}

TEST_F(Resting, TheReleaseHidesTheWindow) {
    highlight(path_);
    [preview_ showPreviewWindow:nil];
    ASSERT_TRUE(is_shown());
    release();
    EXPECT_FALSE(is_shown());
}

namespace {

NSPoint pointer_at;

NSPoint pointer_location(id, SEL) { return pointer_at; }

NSRect visible_area(id, SEL) { return NSMakeRect(10, 20, 1200, 700); }

}  // namespace

TEST_F(HoverWindow, ItGoesToThePointersOtherSideAndStaysInItsHalf) {
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    const test::ReplacedMethod area([NSScreen class], @selector(visibleFrame), visible_area);
    pointer_at = NSMakePoint(5000, 5000);
    [window_controller_ showPreviewWindow:nil];
    const struct {
        NSPoint pointer, origin;
    } rows[] = {
        // The middle is at 610, 370; the middle itself counts as right, and as below.
        {{609, 371}, {698, 208}},
        {{610, 371}, {10, 208}},
        {{609, 370}, {698, 20}},
        {{610, 370}, {10, 20}},
    };
    for (const auto& row : rows) {
        pointer_at = row.pointer;
        [window() setFrameOrigin:NSMakePoint(row.pointer.x - 100, row.pointer.y - 100)];
        [window_controller_ handleMouseMoved];
        run_until([&] { return NSEqualPoints([window() frame].origin, row.origin); });
        EXPECT_TRUE(NSEqualSizes([window() frame].size, NSMakeSize(512, 512)));
    }
}

namespace {

int animated_moves = 0;

void note_move(id, SEL, NSRect, BOOL display, BOOL animate) {
    if (display && animate) animated_moves++;
}

}  // namespace

TEST_F(HoverWindow, ItsWayToTheOtherSideIsAnimated) {
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    pointer_at = NSMakePoint(5000, 5000);
    [window_controller_ showPreviewWindow:nil];
    const test::ReplacedMethod moving([NSWindow class], @selector(setFrame:display:animate:),
                                      note_move);
    animated_moves = 0;
    pointer_at = NSMakePoint(NSMidX([window() frame]), NSMidY([window() frame]));
    [window_controller_ handleMouseMoved];
    EXPECT_EQ(animated_moves, 1);
}

TEST_F(HoverWindow, ItFadesIn) {
    [window_controller_ showPreviewWindow:nil];
    run_until([this] { return [window() alphaValue] == 1; });
}

TEST_F(HoverWindow, ItsPartsGoWithIt) {
    DVPreviewWindowController* other = [[DVPreviewWindowController alloc] init];
    NSArray* parts = @[ [other valueForKey:@"imgView"], [other valueForKey:@"progress"] ];
    NSUInteger owners[2];
    for (int i = 0; i < 2; i++) owners[i] = [[parts objectAtIndex:i] retainCount];
    [other release];
    for (int i = 0; i < 2; i++) EXPECT_EQ([[parts objectAtIndex:i] retainCount], owners[i] - 1);
}

TEST_F(HoverWindow, ItStaysWhereThePointerIsNotAndWhileItIsHidden) {
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    pointer_at = NSMakePoint(5000, 5000);
    const NSRect before = [window() frame];
    [window_controller_ showPreviewWindow:nil];
    [window_controller_ handleMouseMoved];
    EXPECT_TRUE(NSEqualRects([window() frame], before));
    [window_controller_ hidePreviewWindow:nil];
    pointer_at = NSMakePoint(100, 100);
    [window_controller_ handleMouseMoved];
    EXPECT_TRUE(NSEqualRects([window() frame], before));
}

TEST_F(HoverWindow, ShownUnderThePointerItMovesAtOnce) {
    const test::ReplacedMethod pointer(object_getClass([NSEvent class]), @selector(mouseLocation),
                                       pointer_location);
    pointer_at = NSMakePoint(100, 100);
    [window_controller_ showPreviewWindow:nil];
    run_until([&] { return NSMinX([window() frame]) > 100; });
}

TEST_F(HoverWindow, AMovementStartsTheTimerAnewAndTheReleaseEndsIt) {
    take_over();
    [controller_ dvPointerMoved];
    NSTimer* first = [[[controller_ valueForKey:@"hoverPreviewTimer"] retain] autorelease];
    [controller_ dvPointerMoved];
    EXPECT_FALSE([first isValid]);
    NSTimer* second = [[[controller_ valueForKey:@"hoverPreviewTimer"] retain] autorelease];
    EXPECT_TRUE([second isValid]);
    release();
    EXPECT_FALSE([second isValid]);
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
}
