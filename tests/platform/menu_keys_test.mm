// The keyboard in an open menu.
#include <malloc.h>

#include "platform/presenter.h"
#include "x11/screens.h"
#include "x11/toolkit_display.h"

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

// Memory that nobody has written is not empty, so that it shows when Xlib reads it.
// AddressSanitizer fills it in any case.
[[maybe_unused]] const int filled = mallopt(M_PERTURB, 0xA5);

// Xlib itself makes such keys, for a text that it has composed.
TEST_F(Presenter, AKeyWithoutANumberThatAnotherProgramSendsChangesNothing) {
    shown([this] {
        key("Down");
        script_.input.send_key(server_window(shown_level(0).window()), 0);
        key("Return");
    });
    run();
    EXPECT_EQ(log(), "update root, open root, highlight alpha, close root, pick alpha");
}

// The server would keep the pixels of such a window, which may be gigabytes.
TEST_F(Presenter, ASizeThatAnotherProgramSendsIsNotBelieved) {
    NSSize before = NSZeroSize, after = NSZeroSize;
    const auto size = [] { return [shown_level(0).window() frame].size; };
    shown([&] {
        before = size();
        script_.input.send_size(server_window(shown_level(0).window()), 3000, 2000);
        key("Down");
    });
    highlighted("alpha", 0, [&] {
        after = size();
        key("Return");
    });
    run();
    EXPECT_GT(before.width, 0);
    EXPECT_EQ(after.width, before.width);
    EXPECT_EQ(after.height, before.height);
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

// A submenu higher than the screen, whose first rows are a disabled one and a separator.
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
        // The folder itself can be picked, so a key that reached the parent level would show.
        [folder_ setTarget:recorder_];
        [folder_ setAction:@selector(picked:)];
        shown([this] { moveTo(@"folder"); });
    }
    // End and Return are sent while the pointer is at a place in the submenu's panel.
    void pick_the_last_from(int from_top, int from_bottom) {
        levels(2, [=, this] {
            const Area panel = shown_level(1).panel();
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
    // The event has been handled: the highlight of the row that led here has appeared and gone.
    bool stands() const {
        const MenuPoint now = current_pointer().at;
        return now.x == at_.x && now.y == at_.y && highlighted_title(1).empty();
    }
    MenuPoint at_ = {};
};

TEST_F(KeysInASubmenu, ReachItFromItsDisabledRow) { pick_the_last_from(15, 0); }

TEST_F(KeysInASubmenu, ReachItFromItsSeparator) {
    const MenuLook look = menu_look(nil, nullptr);
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
        const Area panel = shown_level(1).panel();
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

TEST_F(Presenter, TheWindowBelowKeepsTheFocusWhileTheMenuHasTheKeys) {
    const unsigned long window = script_.input.new_window();
    script_.input.focus(window);
    shown([this] { key("End"); });
    highlighted("gamma", 0, [this, window] {
        EXPECT_EQ(script_.input.focused(), window);
        key("Return");
    });
    run();
    EXPECT_NE(log().find("pick gamma"), std::string::npos);
    EXPECT_EQ(script_.input.focused(), window);
}

TEST_F(Presenter, FurtherPressesOfALetterGoThroughItsRows) {
    [recorder_ addItem:@"Gallery" toMenu:root_];
    [recorder_ addItem:@"green" toMenu:root_];
    shown([this] { key("g"); });
    highlighted("gamma", 0, [this] { key("g"); });
    highlighted("Gallery", 0, [this] { key("g"); });
    highlighted("green", 0, [this] { key("g"); });
    highlighted("gamma", 0, [this] { key("Escape"); });
    run();
}

TEST_F(Presenter, TypingWithoutAccentsFindsThemHoweverTheyAreComposed) {
    const unichar composed[] = {'C', 'a', 'f', 0xE9}, apart[] = {'C', 'a', 'f', 'e', 0x301, 's'};
    [recorder_ addItem:[NSString stringWithCharacters:composed length:4] toMenu:root_];
    [recorder_ addItem:[NSString stringWithCharacters:apart length:6] toMenu:root_];
    shown([this] {
        for (const char* letter : {"c", "a", "f", "e"}) key(letter);
    });
    highlighted("Caf\u00E9", 0, [this] { key("s"); });
    highlighted("Cafe\u0301s", 0, [this] { key("Escape"); });
    run();
}

// Keys of other keyboards, and one that only begins a character.
TEST_F(Presenter, TypingTakesAnyScriptAndCharactersOfSeveralKeys) {
    const std::string stroke = script_.input.new_key("dead_stroke");
    const std::string cyrillic = script_.input.new_key("Cyrillic_er");
    const std::string chinese = script_.input.new_key("U65E5");
    for (const char* title : {"\u0440\u0443\u0441", "\u65E5\u672C", "other", "\u00D8rsted"}) {
        [recorder_ addItem:[NSString stringWithUTF8String:title] toMenu:root_];
    }
    shown([this, cyrillic] { key(cyrillic.c_str()); });
    highlighted("\u0440\u0443\u0441", 0, [this, chinese] {
        key("Home");
        key(chinese.c_str());
    });
    highlighted("\u65E5\u672C", 0, [this, stroke] {
        key("Home");
        key(stroke.c_str());
        key("o");
    });
    highlighted("\u00D8rsted", 0, [this] { key("Escape"); });
    run();
}

TEST_F(KeysInASubmenu, PageDownAndEndReachTheEndThoughItsRowsAreDisabled) {
    NSMenu* menu = [folder_ submenu];
    [menu addItem:[NSMenuItem separatorItem]];
    [[recorder_ addItem:@"last" toMenu:menu] setEnabled:NO];
    const auto sees_the_end = [] {
        MenuLevel& level = shown_level(1);
        const int last = static_cast<int>(level.layout().rows().size()) - 1;
        return highlighted_title(1) == "row 99" &&
               level.row_area(last).bottom() <= level.panel().bottom();
    };
    levels(2, [this] { key("Right"); });
    highlighted("row 0", 1, [this] {
        for (int i = 0; i < 20; i++) key("Next");
    });
    script_.when("the end by Page Down", sees_the_end, [this] { key("Home"); });
    highlighted("row 0", 1, [this] { key("End"); });
    script_.when("the end by End", sees_the_end, [this] { key("Escape"); });
    run();
}

class EscapeOneLevel : public KeysInASubmenu {
  protected:
    void SetUp() override {
        KeysInASubmenu::SetUp();
        [NSMenu setEscapeQuestion:yes];
    }
    void TearDown() override {
        [NSMenu setEscapeQuestion:nullptr];
        KeysInASubmenu::TearDown();
    }
    static BOOL yes() { return YES; }
};

TEST_F(EscapeOneLevel, ClosesTheDeepestLevelAndTheSecondPressTheRest) {
    NSMenu* deeper = [addFolder(@"deeper", [folder_ submenu]) submenu];
    [recorder_ addItem:@"leaf" toMenu:deeper];
    levels(2, [this] { key("Right"); });
    highlighted("row 0", 1, [this] { key("End"); });
    highlighted("deeper", 1, [this] { key("Right"); });
    levels(3, [this] { key("Escape"); });
    levels(2, [this] { key("Escape"); });
    run();
    EXPECT_NE(log().find("close deeper, close folder, close root"), std::string::npos);
}

TEST_F(EscapeOneLevel, ClosesOneLevelAgainAfterAnotherKey) {
    levels(2, [this] { key("Escape"); });
    levels(1, [this] { key("Right"); });
    levels(2, [this] { key("Escape"); });
    levels(1, [this] { key("Escape"); });
    run();
}
