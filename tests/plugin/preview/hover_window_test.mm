#include "preview/DVPreviewWindowController.h"

#include <QuartzCore/QuartzCore.h>
#include <gtest/gtest.h>

#include "loader/DVDelvio+Proxy.h"
#include "menus/DVCircularProgressView.h"
#include "menus/DVMenuItem.h"
#include "plugin/menu_fixture.h"
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
    // Waits for the picture that is being made.
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
    EXPECT_EQ([image_view() imageAlignment], NSImageAlignCenter);
    EXPECT_FALSE([image_view() isEditable]);
    EXPECT_EQ([[content() subviews] count], 0u);
    EXPECT_FALSE([window_controller_ isVisible]);
}

TEST_F(HoverWindow, AFileGivesADiscAndThenItsPicture) {
    [window_controller_ setPath:url(folder_.file("text", "A\n"))];
    EXPECT_EQ([progress() superview], content());
    EXPECT_TRUE([timer() isValid]);
    EXPECT_NEAR([timer() timeInterval], 1.0 / 30, 1e-6);
    finish();
    EXPECT_EQ([image_view() superview], content());
    EXPECT_EQ([progress() superview], nil);
    EXPECT_TRUE(NSEqualSizes([[image_view() image] size], NSMakeSize(256, 256)));
    EXPECT_EQ(timer(), nil);
}

TEST_F(HoverWindow, TheSameFileAgainBeginsNoNewPicture) {
    const std::string path = folder_.file("text", "A\n");
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
        [window_controller_ setPath:url(folder_.file("text" + std::to_string(i), "A\n"))];
    }
    EXPECT_EQ(productions(), 20);
    finish();
    EXPECT_EQ([image_view() superview], content());
    EXPECT_EQ(timer(), nil);
}

TEST_F(HoverWindow, AFileWithoutAPictureKeepsTheOneBefore) {
    [window_controller_ setPath:url(folder_.file("text", "A\n"))];
    finish();
    NSImage* before = [image_view() image];
    ASSERT_NE(before, nil);
    dv_->preview_size = 0;  // no square can be made
    [window_controller_ setPath:url(folder_.file("other", "A\n"))];
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
    [window_controller_ setPath:url(folder_.file("text", "A\n"))];
    finish();
    [window_controller_ showPreviewWindow:nil];  // no file is highlighted
    EXPECT_EQ([image_view() superview], content());
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

TEST_F(HoverWindow, AMovementStartsTheTimerAnewAndTheReleaseEndsIt) {
    take_over();
    [controller_ dvPointerMoved];
    NSTimer* first = [[[controller_ valueForKey:@"hoverPreviewTimer"] retain] autorelease];
    const double moved = [[controller_ valueForKey:@"lastMouseMovement"] doubleValue];
    EXPECT_NEAR([[first fireDate] timeIntervalSince1970] - moved, 1, 0.1);
    [controller_ dvPointerMoved];
    EXPECT_FALSE([first isValid]);
    NSTimer* second = [[[controller_ valueForKey:@"hoverPreviewTimer"] retain] autorelease];
    EXPECT_TRUE([second isValid]);
    release();
    EXPECT_FALSE([second isValid]);
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
}
