#include <AppKit/AppKit.h>
#include <host/menu_picture.h>
#include <host/menu_tracking.h>
#include <gtest/gtest.h>

#include "platform/menu_script.h"
#include "platform/recording_delegate.h"
#include "support/app.h"
#include "support/right_click.h"
#include "support/temp_folder.h"

namespace {

const int left = 300, top = 200;

class Presenter : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        recorder_ = [RecordingDelegate new];
        root_ = [recorder_ menuNamed:@"root"];
        [recorder_ addItem:@"alpha" toMenu:root_];
        folder_ = addFolder(@"folder", root_);
        beta_ = [recorder_ addItem:@"beta" toMenu:root_];
        [root_ addItem:[NSMenuItem separatorItem]];
        [[recorder_ addItem:@"disabled" toMenu:root_] setEnabled:NO];
        [recorder_ addItem:@"gamma" toMenu:root_];
        [recorder_ addItem:@"inner" toMenu:[folder_ submenu]];
        addFolder(@"deeper", [folder_ submenu]);
        [recorder_ addItem:@"leaf" toMenu:[[[folder_ submenu] itemWithTitle:@"deeper"] submenu]];
        script_.input.move(10, 10);
    }
    void TearDown() override {
        EXPECT_TRUE(script_.input.pointer_is_free());
        EXPECT_TRUE(script_.input.keyboard_is_free());
        EXPECT_EQ([MenuSession current], nil);
        [recorder_ release];
        [pool_ release];
    }

    // A folder to browse has no action: to press it opens it.
    NSMenuItem* addFolder(NSString* title, NSMenu* menu) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                                keyEquivalent:@""] autorelease];
        NSMenu* submenu = [recorder_ menuNamed:title];
        [item setSubmenu:submenu];
        [menu addItem:item];
        return item;
    }
    void run(int x = left, int y = top) {
        [recorder_ takeLog];
        script_.run(root_, x, y);
    }
    std::string log() { return [recorder_ takeLog]; }
    void shown(MenuScript::Action action) {
        script_.when(
            "menu shown", [] { return level_is_shown(0); }, action);
    }
    void levels(size_t count, MenuScript::Action action) {
        script_.when(
            "levels", [count] { return shown_levels() == count; }, action);
    }
    void highlighted(const std::string& title, size_t level, MenuScript::Action action) {
        script_.when(
            "highlight " + title, [=] { return highlighted_title(level) == title; }, action);
    }
    void moveTo(NSString* title, size_t level = 0) {
        const point_t at = row_point(level, title);
        script_.input.move(at.x, at.y);
    }
    void click(NSString* title, size_t level = 0, int button = 1) {
        const point_t at = row_point(level, title);
        clickAt(at.x, at.y, button);
    }
    void clickAt(int x, int y, int button = 1) {
        script_.input.move(x, y);
        script_.input.click(button);
    }
    void key(const char* name) { script_.input.key(name); }

    NSAutoreleasePool* pool_;
    RecordingDelegate* recorder_;
    NSMenu* root_;
    NSMenuItem *folder_, *beta_;
    MenuScript script_;
};

}  // namespace

TEST_F(Presenter, AClickPicksAfterEverythingHasClosed) {
    shown([this] { click(@"alpha"); });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight alpha, close root, pick alpha");
}

TEST_F(Presenter, ARightClickPicksToo) {
    shown([this] { click(@"beta", 0, 3); });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight beta, close root, pick beta");
}

TEST_F(Presenter, PressDragReleasePicksWhereItLetsGo) {
    script_.input.move(left, top);
    script_.input.press(3);
    shown([this] { moveTo(@"alpha"); });
    highlighted("alpha", 0, [this] { moveTo(@"gamma"); });
    highlighted("gamma", 0, [this] { script_.input.release(3); });
    run();
    EXPECT_EQ(log(),
              "update root, open root, highlight alpha, highlight gamma, close root, pick gamma");
}

TEST_F(Presenter, AQuickReleaseOverTheMenuPicksNothing) {
    script_.input.move(left + 40, top + 15);
    script_.input.press(3);
    bool stayed = false;
    shown([&] { script_.input.release(3); });
    script_.when(
        "sticky", [] { return menu_run_t::current()->state() == state_sticky; },
        [&] {
            stayed = true;
            key("Escape");
        });
    run();
    EXPECT_TRUE(stayed);
    EXPECT_EQ(log().find("pick"), std::string::npos);
}

TEST_F(Presenter, ADragThatEndsOutsideCloses) {
    script_.input.move(left, top);
    script_.input.press(3);
    shown([this] { moveTo(@"alpha"); });
    highlighted("alpha", 0, [this] { script_.input.move(20, 20); });
    highlighted("", 0, [this] { script_.input.release(3); });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight alpha, highlight nil, close root");
}

TEST_F(Presenter, AClickOutsideClosesWithoutAPick) {
    shown([this] { clickAt(20, 20); });
    run();
    EXPECT_EQ(log(), "update root, open root, close root");
}

TEST_F(Presenter, ADisabledRowIsNeitherHighlightedNorPicked) {
    shown([this] { click(@"disabled"); });
    script_.when(
        "released", [] { return menu_run_t::current()->state() == state_sticky; },
        [this] { key("Escape"); });
    run();
    EXPECT_EQ(log(), "update root, open root, close root");
}

TEST_F(Presenter, RestingOnAFolderOpensItAndEscapeClosesAllLevels) {
    shown([this] { moveTo(@"folder"); });
    levels(2, [this] { moveTo(@"deeper", 1); });
    levels(3, [this] { key("Escape"); });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight folder, update folder, open folder, "
                     "highlight deeper, update deeper, open deeper, "
                     "close deeper, close folder, close root");
}

TEST_F(Presenter, PressingAFolderWithoutAnActionOpensItAtOnce) {
    shown([this] { click(@"folder"); });
    levels(2, [this] { click(@"inner", 1); });
    run();
    EXPECT_NE(log().find("close folder, close root, pick inner"), std::string::npos);
}

TEST_F(Presenter, ASubmenuClosesWhenThePointerRestsOnAnotherRow) {
    shown([this] { moveTo(@"folder"); });
    levels(2, [this] { moveTo(@"alpha"); });
    levels(1, [this] { key("Escape"); });
    run();
    EXPECT_NE(log().find("highlight alpha, close folder, close root"), std::string::npos);
}

TEST_F(Presenter, ALevelThatTheProgramOpensStaysWhileThePointerRestsElsewhere) {
    int turns = 0;
    shown([this] { [[MenuSession current] openSubmenuOfItem:folder_]; });
    script_.when(
        "stayed", [&] { return level_is_shown(1) && ++turns > 100; },
        [] { [[MenuSession current] cancel]; });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight folder, update folder, open folder, "
                     "close folder, close root");
}

TEST_F(Presenter, ArrowsMoveOverWhatCanBeHighlightedAndReturnPicks) {
    shown([this] {
        for (int i = 0; i < 4; i++) key("Down");
    });
    highlighted("gamma", 0, [this] { key("Up"); });
    highlighted("beta", 0, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("highlight gamma, highlight beta, close root, pick beta"),
              std::string::npos);
}

TEST_F(Presenter, RightEntersALevelAndLeftLeavesIt) {
    shown([this] {
        key("Down");
        key("Down");
        key("Right");
    });
    highlighted("inner", 1, [this] { key("Left"); });
    levels(1, [this] { key("Right"); });
    highlighted("inner", 1, [this] { key("space"); });
    run();
    EXPECT_NE(log().find("pick inner"), std::string::npos);
}

// A submenu whose first rows are a disabled one and a separator, higher than the screen.
class KeysInASubmenu : public Presenter {
  protected:
    void SetUp() override {
        Presenter::SetUp();
        NSMenu* menu = [folder_ submenu];
        [menu removeAllItems];
        [[recorder_ addItem:@"empty" toMenu:menu] setEnabled:NO];
        [menu addItem:[NSMenuItem separatorItem]];
        for (int i = 0; i < 100; i++) {
            [recorder_ addItem:[NSString stringWithFormat:@"row %d", i] toMenu:menu];
        }
        // The folder itself can be picked, as a key that reached the parent level would show.
        [folder_ setTarget:recorder_];
        [folder_ setAction:@selector(picked:)];
        shown([this] { moveTo(@"folder"); });
    }
    // End and Return are sent while the pointer is at a place in the submenu's panel.
    void pick_the_last_from(int from_top, int from_bottom) {
        levels(2, [=, this] {
            const area_t panel = shown_level(1).panel();
            const int y = from_top ? panel.top + from_top : panel.bottom() - from_bottom;
            at_ = {panel.left + 30, y};
            script_.input.move(at_.x, at_.y);
        });
        script_.when(
            "pointer there", [this] { return stands(); }, [this] { key("End"); });
        highlighted("row 99", 1, [this] { key("Return"); });
        run();
        EXPECT_NE(log().find("close folder, close root, pick row 99"), std::string::npos);
    }
    // The event has been handled: the highlight of the row that led here has come and gone.
    bool stands() const {
        const point_t now = current_pointer().at;
        return now.x == at_.x && now.y == at_.y && highlighted_title(1).empty();
    }
    point_t at_ = {};
};

TEST_F(KeysInASubmenu, ReachItFromItsDisabledRow) { pick_the_last_from(15, 0); }

TEST_F(KeysInASubmenu, ReachItFromItsSeparator) {
    const menu_look_t look = menu_look(nil, nullptr);
    pick_the_last_from(look.inset + look.row_height + look.separator_height / 2, 0);
}

TEST_F(KeysInASubmenu, ReachItFromItsScrollArrow) { pick_the_last_from(0, 6); }

TEST_F(KeysInASubmenu, ReachItFromOutsideOfAllLevels) {
    levels(2, [this] { moveTo(@"row 3", 1); });
    highlighted("row 3", 1, [this] {
        at_ = {10, 10};
        script_.input.move(10, 10);
    });
    script_.when(
        "outside", [this] { return stands(); }, [this] { key("End"); });
    highlighted("row 99", 1, [this] { key("Escape"); });
    run();
}

TEST_F(KeysInASubmenu, StopTheScrollingOfTheArrowUnderThePointer) {
    int first = 0;
    levels(2, [&] {
        first = row_point(1, @"row 99").y;
        const area_t panel = shown_level(1).panel();
        script_.input.move(panel.left + 30, panel.bottom() - 6);
    });
    script_.when(
        "scrolling", [&] { return row_point(1, @"row 99").y < first; }, [this] { key("Home"); });
    int turns = 0;
    script_.when(
        "the first row stays highlighted",
        [&] {
            turns = highlighted_title(1) == "row 0" ? turns + 1 : 0;
            return turns > 50;
        },
        [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("pick row 0"), std::string::npos);
}

TEST_F(KeysInASubmenu, LeadBackToTheParentAlone) {
    levels(2, [this] { moveTo(@"row 3", 1); });
    highlighted("row 3", 1, [this] { key("Left"); });
    levels(1, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("close folder, close root, pick folder"), std::string::npos);
}

TEST_F(KeysInASubmenu, BelongToTheParentWhileThePointerIsThere) {
    levels(2, [this] { key("Down"); });
    highlighted("beta", 0, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("pick beta"), std::string::npos);
}

TEST_F(KeysInASubmenu, StayThereThoughThePointerRestsInTheParent) {
    levels(2, [this] { key("Right"); });
    highlighted("row 0", 1, [this] { key("Down"); });
    highlighted("row 1", 1, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("pick row 1"), std::string::npos);
}

TEST_F(Presenter, HomeAndEndGoToTheEnds) {
    shown([this] { key("End"); });
    highlighted("gamma", 0, [this] { key("Home"); });
    highlighted("alpha", 0, [this] { key("Escape"); });
    run();
}

TEST_F(Presenter, TypingFindsATitleByItsBeginning) {
    [recorder_ addItem:@"Gallery" toMenu:root_];
    shown([this] { key("g"); });
    highlighted("gamma", 0, [this] {
        key("a");
        key("l");
    });
    highlighted("Gallery", 0, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("pick Gallery"), std::string::npos);
}

TEST_F(Presenter, AlternatesFollowTheKeysWhileTheMenuIsOpen) {
    NSMenuItem* alternate = [[[NSMenuItem alloc] initWithTitle:@"alternate"
                                                        action:@selector(picked:)
                                                 keyEquivalent:@""] autorelease];
    [alternate setTarget:recorder_];
    [alternate setAlternate:YES];
    [alternate setKeyEquivalentModifierMask:NSShiftKeyMask];
    [root_ insertItem:alternate atIndex:[root_ indexOfItem:beta_] + 1];
    shown([this] { moveTo(@"beta"); });
    highlighted("beta", 0, [this] { script_.input.key_down("Shift_L"); });
    highlighted("alternate", 0, [this] {
        EXPECT_EQ(row_point(0, @"beta").x, -1);
        script_.input.key_up("Shift_L");
    });
    highlighted("beta", 0, [this] { script_.input.key_down("Shift_L"); });
    highlighted("alternate", 0, [this] { key("Return"); });
    run();
    EXPECT_NE(log().find("pick alternate"), std::string::npos);
}

TEST_F(Presenter, ItemsMayComeAndGoWhileTheMenuIsOpen) {
    shown([this] { moveTo(@"folder"); });
    levels(2, [this] { [root_ removeItem:folder_]; });
    levels(1, [this] {
        EXPECT_EQ(row_point(0, @"folder").x, -1);
        [recorder_ addItem:@"new" toMenu:root_];
    });
    script_.when(
        "new row", [] { return row_point(0, @"new").x >= 0; },
        [this] {
            [beta_ setTitle:@"a title that is much wider than all the others were before it came"];
        });
    script_.when(
        "wider", [] { return shown_level(0).panel().width > 300; }, [this] { click(@"new"); });
    [folder_ retain];
    run();
    [folder_ release];
    const std::string all = log();
    EXPECT_NE(all.find("close folder"), std::string::npos);
    EXPECT_NE(all.find("close root, pick new"), std::string::npos);
}

TEST_F(Presenter, RemovingEveryItemAndAddingOneKeepsTheMenuOpen) {
    shown([this] { [root_ removeAllItems]; });
    script_.when(
        "empty", [] { return shown_level(0).layout().rows().empty(); },
        [this] { [recorder_ addItem:@"back" toMenu:root_]; });
    script_.when(
        "back", [] { return row_point(0, @"back").x >= 0; }, [this] { click(@"back"); });
    run();
    EXPECT_NE(log().find("pick back"), std::string::npos);
}

TEST_F(Presenter, AnEmptyMenuShowsNothing) {
    NSMenu* empty = [recorder_ menuNamed:@"empty"];
    script_.run(empty, left, top);
    EXPECT_NE(log().find("open empty, close empty"), std::string::npos);
}

TEST_F(Presenter, CancelTrackingFromATimerClosesAllLevels) {
    shown([this] { [[MenuSession current] openSubmenuOfItem:folder_]; });
    levels(2, [this] { [[folder_ submenu] cancelTracking]; });
    run();
    EXPECT_NE(log().find("close folder, close root"), std::string::npos);
}

TEST_F(Presenter, ALevelOfTenThousandRowsScrollsToItsEnd) {
    for (int i = 0; i < 10000; i++) {
        [recorder_ addItem:[NSString stringWithFormat:@"row %d", i] toMenu:root_];
    }
    const int height = screen_at({0, 0}).height;
    shown([&] {
        EXPECT_LE(shown_level(0).panel().height, height);
        EXPECT_GT(row_point(0, @"row 9999").y, height);
        key("End");
    });
    highlighted("row 9999", 0, [&] {
        EXPECT_LT(row_point(0, @"row 9999").y, height);
        key("Prior");
    });
    script_.when(
        "a page up", [] { return highlighted_title(0) != "row 9999"; }, [this] { key("End"); });
    highlighted("row 9999", 0, [this] { click(@"row 9999"); });
    run();
    EXPECT_NE(log().find("close root, pick row 9999"), std::string::npos);
}

TEST_F(Presenter, TheWheelAndTheStripsScroll) {
    for (int i = 0; i < 100; i++) {
        [recorder_ addItem:[NSString stringWithFormat:@"row %d", i] toMenu:root_];
    }
    int before = 0;
    shown([&] {
        before = row_point(0, @"row 99").y;
        moveTo(@"gamma");
        script_.input.press(5);
        script_.input.release(5);
    });
    script_.when(
        "wheel", [&] { return row_point(0, @"row 99").y < before; },
        [&] {
            const area_t panel = shown_level(0).panel();
            script_.input.move(panel.left + 30, panel.bottom() - 6);
        });
    script_.when(
        "strip", [] { return row_point(0, @"row 99").y < shown_level(0).panel().bottom(); },
        [this] {
            const area_t panel = shown_level(0).panel();
            script_.input.move(panel.left + 30, panel.top + 6);
        });
    script_.when(
        "back", [] { return row_point(0, @"alpha").y > shown_level(0).panel().top; },
        [this] { key("Escape"); });
    run();
}

TEST_F(Presenter, SubmenusOpenToTheLeftAtTheRightEdge) {
    const int width = screen_at({0, 0}).width;
    shown([this] { moveTo(@"folder"); });
    levels(2, [&] {
        EXPECT_LE(shown_level(0).panel().right(), width);
        EXPECT_LT(shown_level(1).panel().left, shown_level(0).panel().left);
        EXPECT_GE(shown_level(1).panel().left, 0);
        key("Escape");
    });
    run(width - 2, top);
}

@interface TickingView : NSView {
  @public
    int ticks;
    int presses;
}
@end
@implementation TickingView
- (void)tick:(NSTimer*)timer {
    (void)timer;
    ticks++;
    [self setNeedsDisplay:YES];
}
- (void)mouseDown:(NSEvent*)event {
    (void)event;
    presses++;
}
- (void)drawRect:(NSRect)rect {
    [[NSColor redColor] set];
    NSRectFill(rect);
}
@end

TEST_F(Presenter, AnItemsViewStandsInItsRowUntilItIsTakenAway) {
    TickingView* view = [[[TickingView alloc] initWithFrame:NSMakeRect(0, 0, 40, 32)] autorelease];
    [beta_ setView:view];
    NSTimer* timer = test::while_tracking(0.01, view, @selector(tick:), YES);
    shown([&] {
        EXPECT_EQ([view window], shown_level(0).window());
        const area_t row = shown_level(0).row_area(shown_level(0).layout().row_of(beta_));
        EXPECT_EQ(row.height, 32);
        clickAt(row.left + 20, row.top + 16);
    });
    script_.when(
        "pressed and ticking", [&] { return view->presses == 1 && view->ticks > 5; },
        [&] { [beta_ setView:nil]; });
    script_.when(
        "gone", [&] { return [view window] == nil; }, [this] { click(@"beta"); });
    run();
    [timer invalidate];
    EXPECT_NE(log().find("pick beta"), std::string::npos);
}

TEST_F(Presenter, AMenuMayPopUpFromWithinAMenu) {
    NSMenu* other = [recorder_ menuNamed:@"other"];
    [recorder_ addItem:@"inside" toMenu:other];
    MenuScript inner;
    inner.when(
        "inner", [&] { return shown_levels() == 1 && row_point(0, @"inside").x >= 0; },
        [&] { inner.input.key("Escape"); });
    shown([&] { inner.run(other, 500, 400); });
    script_.when(
        "outer again", [] { return row_point(0, @"alpha").x >= 0; }, [this] { click(@"alpha"); });
    run();
    EXPECT_NE(log().find("open other, close other, highlight alpha, close root, pick alpha"),
              std::string::npos);
}

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

// Exceptions of others pass through the popup, and leave nothing behind.
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
        EXPECT_EQ(menu_run_t::current(), nullptr);
        EXPECT_EQ([MenuSession current], nil);
        EXPECT_EQ([NSView focusView], nil);
        EXPECT_TRUE(script_.input.pointer_is_free());
        EXPECT_TRUE(script_.input.keyboard_is_free());
        for (NSWindow* window in [NSApp windows]) {
            EXPECT_FALSE([window isVisible] && [window level] == NSPopUpMenuWindowLevel);
        }
        // The next menu is as if nothing had been.
        MenuScript next;
        next.when(
            "the next menu", [] { return row_point(0, @"alpha").x >= 0; },
            [&] {
                const point_t at = row_point(0, @"alpha");
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

TEST_F(Presenter, APictureShowsTheOpenLevels) {
    test::TempFolder folder;
    NSString* file = [NSString stringWithUTF8String:folder.path("menu.png").c_str()];
    NSSize one = NSZeroSize, two = NSZeroSize;
    const auto size = [file] {
        NSImageRep* rep = [NSBitmapImageRep imageRepWithData:[NSData dataWithContentsOfFile:file]];
        return NSMakeSize([rep pixelsWide], [rep pixelsHigh]);
    };
    EXPECT_FALSE(WritePictureOfOpenMenus(file, NO));
    shown([&] {
        EXPECT_TRUE(WritePictureOfOpenMenus(file, NO));
        one = size();
        EXPECT_EQ(one.width, shown_level(0).panel().width);
        EXPECT_EQ(one.height, shown_level(0).panel().height);
        [[MenuSession current] openSubmenuOfItem:folder_];
        EXPECT_TRUE(WritePictureOfOpenMenus(file, NO));
        two = size();
        [[MenuSession current] cancel];
    });
    run();
    EXPECT_GT(two.width, one.width);
}
