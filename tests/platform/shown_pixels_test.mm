// What the X server shows of a window at once, before it has carried out any copying of pixels.
#include "x11/window_pixels.h"

#include <gtest/gtest.h>

#include "support/app.h"
#include "support/x_input.h"
#include "x11/menu_windows.h"
#include "x11/toolkit_display.h"

#include <X11/Xlib.h>  // its macros come after GoogleTest

@interface RedView : NSView
@end

@implementation RedView
- (void)drawRect:(NSRect)rect {
    [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1] set];
    NSRectFillUsingOperation(rect, NSCompositeCopy);
}
@end

namespace {

constexpr unsigned long red = 0xff0000;
constexpr Area area = {100, 100, 200, 150};

struct ShownPixels : testing::Test {
    static void SetUpTestSuite() { test::start_application(); }
    ShownPixels() {
        window = new_menu_window(area);
        const NSRect whole = NSMakeRect(0, 0, area.width, area.height);
        [window setContentView:[[[RedView alloc] initWithFrame:whole] autorelease]];
        [[window contentView] setNeedsDisplay:YES];
    }
    ~ShownPixels() override {
        [window close];
        [window release];
    }
    // The toolkit copies the pixels when it hears that the window is there, or when it is told to.
    void show() {
        [window orderFrontRegardless];
        XSync(toolkit_display(), False);
    }
    unsigned long shown() { return input.pixel(area.left + 20, area.top + 20); }

    NSWindow* window;
    test::XInput input;
};

TEST_F(ShownPixels, AWindowHasItsPixelsInTheMomentThatItIsShown) {
    const ShownWithPixels pixels(window);
    show();
    EXPECT_EQ(shown(), red);
}

TEST_F(ShownPixels, WithoutThatItIsEmptyAtFirst) {
    show();
    EXPECT_NE(shown(), red);
}

TEST_F(ShownPixels, AMenuWindowHasThem) {
    show_menu_window(window);
    EXPECT_EQ(shown(), red);
}

TEST_F(ShownPixels, AWindowThatIsShownKeepsNoPixelsOfItsBeginning) {
    {
        const ShownWithPixels pixels(window);
        show();
    }
    XClearWindow(toolkit_display(), server_window(window));
    XSync(toolkit_display(), False);
    EXPECT_EQ(shown(), 0u);
}

}  // namespace
