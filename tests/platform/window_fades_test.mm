// Windows above menus and their soft transitions, with and without a compositor.
#include <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#include <QuartzCore/QuartzCore.h>
#include <gtest/gtest.h>

#include "support/announced_window.h"
#include "support/app.h"
#include "support/x_input.h"

@interface ColorView : NSView {
  @private
    NSColor* _color;
}
@end

@implementation ColorView
- (instancetype)initWithFrame:(NSRect)frame color:(NSColor*)color {
    if ((self = [super initWithFrame:frame])) _color = [color retain];
    return self;
}
- (void)dealloc {
    [_color release];
    [super dealloc];
}
- (void)drawRect:(NSRect)rect {
    [_color set];
    NSRectFillUsingOperation(rect, NSCompositeCopy);
}
@end

namespace {

// A guard, not a measure of speed.
const NSTimeInterval patience = 20;

class WindowFades : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::start_application(); }
    WindowFades() {
        const NSRect frame = NSMakeRect(100, 100, 200, 200);
        window_ = [[NSWindow alloc] initWithContentRect:frame
                                              styleMask:NSBorderlessWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
        [window_ setReleasedWhenClosed:NO];
        [window_ setOpaque:NO];
        [window_ setBackgroundColor:[NSColor clearColor]];
        [window_ setLevel:CGWindowLevelForKey(kCGPopUpMenuWindowLevelKey) + 1];
    }
    ~WindowFades() override {
        [window_ close];
        [window_ release];
        [pool_ release];
    }

    // In the lower left quarter of the window.
    ColorView* view(CGFloat red, CGFloat blue, CGFloat alpha) {
        NSColor* color = [NSColor colorWithDeviceRed:red green:0 blue:blue alpha:alpha];
        return [[[ColorView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)
                                           color:color] autorelease];
    }
    void show() {
        [window_ orderFront:nil];
        [window_ display];
        turn();
    }
    void turn() {
        [[NSRunLoop currentRunLoop] runMode:NSEventTrackingRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    }
    template <typename condition>
    void run_until(condition done) {
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:patience];
        while (!done()) {
            if ([end timeIntervalSinceNow] < 0) {
                ADD_FAILURE() << "waited in vain";
                return;
            }
            turn();
        }
    }
    // Of the screen, in the window's coordinates.
    unsigned long pixel(int x, int y) {
        const auto height = static_cast<int>(NSHeight([[NSScreen mainScreen] frame]));
        return input_.pixel(100 + x, height - 100 - y);
    }

    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    NSWindow* window_;
    test::XInput input_;
};

}  // namespace

TEST_F(WindowFades, WithoutACompositorAWindowIsThereAndGoneAtOnce) {
    const unsigned long below = pixel(50, 50);
    [[window_ contentView] addSubview:view(1, 0, 1)];
    [window_ setAlphaValue:0];
    show();
    EXPECT_EQ(pixel(50, 50), below) << "it is ordered in, and not to be seen";
    [[window_ animator] setAlphaValue:1];
    EXPECT_EQ([window_ alphaValue], 1);
    run_until([this] { return pixel(50, 50) == 0xff0000; });
    [[window_ animator] setAlphaValue:0];
    EXPECT_EQ([window_ alphaValue], 0);
    EXPECT_TRUE([window_ isVisible]);
    run_until([this, below] { return pixel(50, 50) == below; });
}

TEST_F(WindowFades, WithACompositorAWindowFadesWhileMenusTrack) {
    const test::Compositor compositor;
    [window_ setAlphaValue:0];
    show();
    [[window_ animator] setAlphaValue:1];
    EXPECT_LT([window_ alphaValue], 1);
    CGFloat last = 0;
    run_until([&] {
        EXPECT_GE([window_ alphaValue], last);
        last = [window_ alphaValue];
        return last == 1;
    });
    [[window_ animator] setAlphaValue:0];
    EXPECT_GT([window_ alphaValue], 0);
    run_until([this] { return [window_ alphaValue] == 0; });
}

TEST_F(WindowFades, TheLastOfTwoFadesHolds) {
    const test::Compositor compositor;
    [window_ setAlphaValue:0.5];
    show();
    [[window_ animator] setAlphaValue:1];
    [[window_ animator] setAlphaValue:0];
    run_until([this] { return [window_ alphaValue] == 0; });
}

TEST_F(WindowFades, AWindowThatGoesEndsItsFade) {
    const test::Compositor compositor;
    @autoreleasepool {
        NSWindow* other = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                      styleMask:NSBorderlessWindowMask
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
        [other setReleasedWhenClosed:NO];
        [other setAlphaValue:0];
        [[other animator] setAlphaValue:1];
        [other release];
    }
    for (int i = 0; i < 10; i++) turn();
}

TEST_F(WindowFades, WithoutACompositorClearPartsShowWhatIsBelow) {
    const unsigned long below = pixel(150, 150);
    [[window_ contentView] addSubview:view(1, 0, 1)];
    show();
    run_until([this] { return pixel(50, 50) == 0xff0000; });
    EXPECT_EQ(pixel(150, 150), below);
}

TEST_F(WindowFades, WithoutACompositorHalfSeenPartsStandOnWhite) {
    [[window_ contentView] addSubview:view(1, 0, 0.5)];
    show();
    const auto is_pink = [this] {
        const unsigned long color = pixel(50, 50);
        return color >> 16 == 0xff && (color >> 8 & 0xff) > 0x78 && (color >> 8 & 0xff) < 0x88;
    };
    run_until(is_pink);
    // And so they stay, drawn again.
    [window_ display];
    [window_ flushWindow];
    run_until(is_pink);
}

TEST_F(WindowFades, ASubviewFadesIntoTheNext) {
    NSView* content = [window_ contentView];
    NSView* red = view(1, 0, 1);
    NSView* blue = view(0, 1, 1);
    [content addSubview:red];
    show();
    run_until([this] { return pixel(50, 50) == 0xff0000; });
    CATransition* transition = [CATransition animation];
    [transition setDuration:0.5];
    [content setAnimations:@{@"subviews" : transition}];
    [[content animator] replaceSubview:red with:blue];
    EXPECT_EQ([red superview], nil);
    EXPECT_EQ([blue superview], content);
    EXPECT_EQ([[content subviews] count], 2u) << "the fade stands on top";
    bool was_between = false;
    run_until([&] {
        const unsigned long color = pixel(50, 50);
        if ((color & 0xff) && color >> 16) was_between = true;
        return color == 0x0000ff && [[content subviews] count] == 1;
    });
    EXPECT_TRUE(was_between);
}

TEST_F(WindowFades, WithoutATransitionASubviewIsReplacedAtOnce) {
    NSView* content = [window_ contentView];
    NSView* red = view(1, 0, 1);
    [content addSubview:red];
    show();
    [[content animator] replaceSubview:red with:view(0, 1, 1)];
    EXPECT_EQ([[content subviews] count], 1u);
}
