#include <host/menu_picture.h>
#include <unistd.h>

#include "platform/events/pointer_window.h"
#include "platform/presenter.h"
#include "support/right_click.h"
#include "support/temp_folder.h"
#include "x11/screens.h"

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
        "sticky", [] { return MenuRun::current()->state() == state_sticky; },
        [&] {
            stayed = true;
            key("Escape");
        });
    run();
    EXPECT_TRUE(stayed);
    EXPECT_EQ(log().find("pick"), std::string::npos);
}

// A menu of a slow disk.
@interface SlowMenu : NSObject
@end

@implementation SlowMenu
- (void)menuNeedsUpdate:(NSMenu*)menu {
    (void)menu;
    usleep(800000);  // longer than a press that is meant as held
}
@end

// The program sees the release late, but the click was quick.
TEST_F(Presenter, AQuickClickOpensAMenuForGoodThatFillsSlowly) {
    SlowMenu* slow = [[SlowMenu new] autorelease];
    [root_ setDelegate:(id)slow];
    PointerWindow* window = [[PointerWindow new] autorelease];
    [[[window window] contentView] setMenu:root_];
    script_.input.move(110, 110);
    script_.input.click_of(3, 150);
    bool stayed = false;
    const auto is_sticky = [] {
        const MenuRun* run = MenuRun::current();
        return run && run->state() == state_sticky;
    };
    test::Steps()
        .when("sticky", is_sticky,
              [&] {
                  stayed = true;
                  key("Escape");
              })
        .run();
    EXPECT_TRUE(stayed);
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
        "released", [] { return MenuRun::current()->state() == state_sticky; },
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
            const Area panel = shown_level(0).panel();
            script_.input.move(panel.left + 30, panel.bottom() - 6);
        });
    script_.when(
        "strip", [] { return row_point(0, @"row 99").y < shown_level(0).panel().bottom(); },
        [this] {
            const Area panel = shown_level(0).panel();
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
        const Area row = shown_level(0).row_area(shown_level(0).layout().row_of(beta_));
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

TEST_F(Presenter, APictureShowsTheOpenLevels) {
    test::TempFolder folder;
    NSString* file = [NSString stringWithUTF8String:folder.path("menu.png").c_str()];
    NSSize one = NSZeroSize, two = NSZeroSize;
    const auto size = [file] {
        NSImageRep* rep = [NSBitmapImageRep imageRepWithData:[NSData dataWithContentsOfFile:file]];
        return NSMakeSize([rep pixelsWide], [rep pixelsHigh]);
    };
    EXPECT_FALSE(write_picture_of_open_menus(file, NO));
    shown([&] {
        EXPECT_TRUE(write_picture_of_open_menus(file, NO));
        one = size();
        EXPECT_EQ(one.width, shown_level(0).panel().width);
        EXPECT_EQ(one.height, shown_level(0).panel().height);
        [[MenuSession current] openSubmenuOfItem:folder_];
        EXPECT_TRUE(write_picture_of_open_menus(file, NO));
        two = size();
        [[MenuSession current] cancel];
    });
    run();
    EXPECT_GT(two.width, one.width);
}
