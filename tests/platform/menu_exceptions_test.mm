// Exceptions that other code raises while a menu is open.
#include "platform/presenter.h"

// Raises in one of the messages that it gets.
@interface RaisingDelegate : RecordingDelegate {
  @public
    std::string raisesIn;
}
@end
@implementation RaisingDelegate
- (void)dvRaiseIn:(const char*)message {
    if (raisesIn == message) [NSException raise:@"TestException" format:@"on purpose"];
}
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item {
    [super menu:menu willHighlightItem:item];
    if (item) [self dvRaiseIn:"highlight"];
}
- (void)menuNeedsUpdate:(NSMenu*)menu {
    [super menuNeedsUpdate:menu];
    [self dvRaiseIn:"update"];
}
- (void)menuWillOpen:(NSMenu*)menu {
    [super menuWillOpen:menu];
    [self dvRaiseIn:"open"];
}
- (void)menuDidClose:(NSMenu*)menu {
    [super menuDidClose:menu];
    [self dvRaiseIn:"close"];
}
- (void)picked:(id)sender {
    [super picked:sender];
    [self dvRaiseIn:"pick"];
}
@end

@interface RaisingView : NSView {
  @public
    bool raisesInDrawing;
}
@end
@implementation RaisingView
- (void)drawRect:(NSRect)rect {
    (void)rect;
    if (raisesInDrawing) [NSException raise:@"TestException" format:@"on purpose"];
}
- (void)mouseDown:(NSEvent*)event {
    (void)event;
    [NSException raise:@"TestException" format:@"on purpose"];
}
@end

// Exceptions of other code pass through the popup and leave nothing behind.
class RaisingPresenter : public Presenter {
  protected:
    void SetUp() override {
        Presenter::SetUp();
        delegate_ = [[RaisingDelegate new] autorelease];
        menu_ = [delegate_ menuNamed:@"raising"];
        row_ = [delegate_ addItem:@"row" toMenu:menu_];
    }
    void expect_to_pass() {
        std::string caught;
        @try {
            script_.run(menu_, left, top);
        } @catch (NSException* exception) {
            caught = [[exception name] UTF8String];
        }
        EXPECT_EQ(caught, "TestException");
        EXPECT_EQ(MenuRun::current(), nullptr);
        EXPECT_EQ([MenuSession current], nil);
        EXPECT_EQ([NSView focusView], nil);
        EXPECT_TRUE(script_.input.pointer_is_free());
        EXPECT_TRUE(script_.input.keyboard_is_free());
        for (NSWindow* window in [NSApp windows]) {
            EXPECT_FALSE([window isVisible] && [window level] == NSPopUpMenuWindowLevel);
        }
        // The next menu works as if nothing had happened.
        MenuScript next;
        next.when(
            "the next menu", [] { return row_point(0, @"alpha").x >= 0; },
            [&] {
                const MenuPoint at = row_point(0, @"alpha");
                next.input.move(at.x, at.y);
                next.input.click(1);
            });
        [recorder_ takeLog];
        next.run(root_, left, top);
        EXPECT_EQ(log(), "update root, open root, highlight alpha, close root, pick alpha");
    }
    RaisingDelegate* delegate_;
    NSMenu* menu_;
    NSMenuItem* row_;
};

TEST_F(RaisingPresenter, AtAHighlight) {
    delegate_->raisesIn = "highlight";
    shown([this] { moveTo(@"row"); });
    expect_to_pass();
    EXPECT_EQ([delegate_ takeLog], "update raising, open raising, highlight row, close raising");
}

TEST_F(RaisingPresenter, AtAnUpdate) {
    delegate_->raisesIn = "update";
    expect_to_pass();
    EXPECT_EQ([delegate_ takeLog], "update raising, close raising");
}

TEST_F(RaisingPresenter, AtTheOpeningOfALevel) {
    delegate_->raisesIn = "open";
    expect_to_pass();
    EXPECT_EQ([delegate_ takeLog], "update raising, open raising, close raising");
}

TEST_F(RaisingPresenter, AtTheOpeningOfASubmenu) {
    RaisingDelegate* inner = [[RaisingDelegate new] autorelease];
    NSMenu* submenu = [inner menuNamed:@"inner"];
    [inner addItem:@"leaf" toMenu:submenu];
    inner->raisesIn = "open";
    [row_ setSubmenu:submenu];
    shown([this] { moveTo(@"row"); });
    expect_to_pass();
    EXPECT_EQ([inner takeLog], "update inner, open inner, close inner");
    EXPECT_EQ([delegate_ takeLog], "update raising, open raising, highlight row, close raising");
}

TEST_F(RaisingPresenter, AtTheClosing) {
    delegate_->raisesIn = "close";
    shown([this] { key("Escape"); });
    expect_to_pass();
}

TEST_F(RaisingPresenter, AtAnAction) {
    delegate_->raisesIn = "pick";
    shown([this] { click(@"row"); });
    expect_to_pass();
}

TEST_F(RaisingPresenter, AtThePressOnAnItemsView) {
    RaisingView* view = [[[RaisingView alloc] initWithFrame:NSMakeRect(0, 0, 60, 30)] autorelease];
    [row_ setView:view];
    shown([this] { click(@"row"); });
    expect_to_pass();
    EXPECT_EQ([view window], nil);
}

TEST_F(RaisingPresenter, AtTheDrawingOfAnItemsView) {
    RaisingView* view = [[[RaisingView alloc] initWithFrame:NSMakeRect(0, 0, 60, 30)] autorelease];
    [row_ setView:view];
    shown([=] {
        view->raisesInDrawing = true;
        [view setNeedsDisplay:YES];
    });
    expect_to_pass();
    EXPECT_EQ([view window], nil);
}
