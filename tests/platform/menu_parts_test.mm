// The parts of the presenter that need no screen.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <fcntl.h>
#include <locale.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "appkit/file_details.h"
#include "desktop/desktop_settings.h"
#include "look/menu_look.h"
#include "look/menu_text.h"
#include "menus/menu_states.h"
#include "support/temp_folder.h"
#include "x11/menu_geometry.h"

namespace {

const Area screen = {0, 0, 1000, 800};

void expect_step(TrackingState state, TrackingInput input, TrackingState next,
                 TrackingEffect effect) {
    const Transition step = transition(state, input);
    EXPECT_EQ(step.next, next) << "state " << state << " input " << input;
    EXPECT_EQ(step.effect, effect) << "state " << state << " input " << input;
}

}  // namespace

TEST(TrackingStates, APopupIsPressedOrStickyByItsButton) {
    expect_step(state_closed, input_open_pressed, state_pressed, effect_none);
    expect_step(state_closed, input_open_free, state_sticky, effect_none);
    expect_step(state_closed, input_cancel, state_closed, effect_none);
}

TEST(TrackingStates, APressedMenuPicksStaysOrClosesAtTheRelease) {
    expect_step(state_pressed, input_release_pick, state_closing, effect_pick);
    expect_step(state_pressed, input_release_stay, state_sticky, effect_none);
    expect_step(state_pressed, input_release_outside, state_closing, effect_cancel);
}

TEST(TrackingStates, AStickyMenuIgnoresReleasesAndTakesPresses) {
    expect_step(state_sticky, input_release_pick, state_sticky, effect_none);
    expect_step(state_sticky, input_release_outside, state_sticky, effect_none);
    expect_step(state_sticky, input_press_inside, state_pressed, effect_arm);
    expect_step(state_sticky, input_press_outside, state_closing, effect_cancel);
}

TEST(TrackingStates, ScrollingGoesBackToWhereTheButtonIs) {
    expect_step(state_pressed, input_enter_edge, state_scrolling, effect_start_scroll);
    expect_step(state_sticky, input_enter_edge, state_scrolling, effect_start_scroll);
    expect_step(state_scrolling, input_enter_edge, state_scrolling, effect_none);
    expect_step(state_scrolling, input_leave_edge_pressed, state_pressed, effect_stop_scroll);
    expect_step(state_scrolling, input_leave_edge_free, state_sticky, effect_stop_scroll);
    expect_step(state_scrolling, input_cancel, state_closing, effect_cancel);
}

TEST(TrackingStates, NothingLeavesClosingButTheEnd) {
    for (int input = input_open_pressed; input < input_closed; input++) {
        expect_step(state_closing, static_cast<TrackingInput>(input), state_closing, effect_none);
    }
    expect_step(state_closing, input_closed, state_closed, effect_none);
}

TEST(Placement, APanelOpensBelowAndRightOfThePointer) {
    const Area area = place_at_pointer({200, 300}, {100, 100}, screen, 4);
    EXPECT_GE(area.left, 100);
    EXPECT_GE(area.top, 100);
    EXPECT_FALSE(area.contains({100, 100}));
}

TEST(Placement, AMirroredPanelOpensBelowAndLeftOfThePointer) {
    EXPECT_EQ(place_at_pointer({200, 300}, {500, 100}, screen, 4, on_left).right(), 500);
    EXPECT_GT(place_at_pointer({200, 300}, {100, 100}, screen, 4, on_left).left, 100);
}

TEST(Placement, APanelTurnsAwayFromTheEdges) {
    const Area area = place_at_pointer({200, 300}, {990, 790}, screen, 4);
    EXPECT_EQ(area.right(), 990);
    EXPECT_EQ(area.bottom(), 790);
}

TEST(Placement, APanelThatIsTooHighTakesTheScreensHeight) {
    const Area area = place_at_pointer({200, 240000}, {500, 400}, screen, 4);
    EXPECT_EQ(area.top, 4);
    EXPECT_EQ(area.bottom(), 796);
}

TEST(Placement, APanelStaysOnItsOwnScreen) {
    const Area second = {1000, 100, 1000, 600};
    const Area area = place_at_pointer({200, 300}, {1990, 690}, second, 4);
    EXPECT_GE(area.left, second.left);
    EXPECT_LE(area.right(), second.right());
    EXPECT_GE(area.top, second.top);
    EXPECT_LE(area.bottom(), second.bottom());
}

TEST(Placement, ASubmenuKeepsToItsSideWhileThereIsRoom) {
    const Area parent = {700, 100, 200, 300}, row = {700, 150, 200, 20};
    Side side = on_right;
    const Area left = place_beside({200, 200}, row, parent, screen, 4, 2, 5, &side);
    EXPECT_EQ(side, on_left);
    EXPECT_EQ(left.right(), parent.left + 2);
    EXPECT_EQ(left.top, row.top - 5);
    const Area next = place_beside({200, 200}, row, left, screen, 4, 2, 5, &side);
    EXPECT_EQ(side, on_left);
    EXPECT_LT(next.left, left.left);
}

TEST(CardPlacement, ACardStandsLevelWithTheRowOnTheSideToPrefer) {
    const Area levels = {300, 100, 200, 300}, row = {300, 150, 200, 20};
    const Area right = place_clear({100, 200}, levels, row, screen, 4, 6, on_right);
    EXPECT_EQ(right, (Area{506, 150, 100, 200}));
    const Area left = place_clear({100, 200}, levels, row, screen, 4, 6, on_left);
    EXPECT_EQ(left, (Area{194, 150, 100, 200}));
}

TEST(CardPlacement, ACardTakesTheOtherSideThenBelowThenAbove) {
    const Area at_right = {700, 100, 290, 300}, wide_above = {10, 20, 980, 200},
               wide_below = {10, 600, 980, 190};
    const Area row = {700, 150, 290, 20};
    EXPECT_EQ(place_clear({100, 200}, at_right, row, screen, 4, 6, on_right).right(), 694);
    EXPECT_EQ(place_clear({100, 200}, wide_above, row, screen, 4, 6, on_right).top, 226);
    EXPECT_EQ(place_clear({100, 200}, wide_below, row, screen, 4, 6, on_right).bottom(), 594);
}

TEST(CardPlacement, ACardThatFitsNowhereIsSmallerInProportion) {
    const Area levels = {300, 100, 300, 600}, row = {300, 680, 300, 20};
    const Area area = place_clear({1000, 500}, levels, row, screen, 4, 6, on_right);
    EXPECT_EQ(area.left, 606);
    EXPECT_EQ(area.right(), 996);
    EXPECT_EQ(area.height, 195);
    EXPECT_EQ(area.top, 601) << "within the screen";
}

TEST(CardLine, LosesItsLastPartsWhereThereIsTooLittleRoom) {
    using Facts = std::vector<std::string>;
    const Facts rest = {"Text", "3 bytes", "1 May 2024, 10:12"};
    const auto in = [&](size_t room) {
        return rest_that_fits(rest, [room](const Facts& facts) { return facts.size() <= room; });
    };
    EXPECT_EQ(in(3), rest);
    EXPECT_EQ(in(2), Facts({"Text", "3 bytes"}));
    EXPECT_EQ(in(1), Facts({"Text"}));
    EXPECT_EQ(in(0), Facts());
}

// Where the character at which this text begins stands in the line.
static int left_of(const TextLayout& line, const std::string& text) {
    const std::string whole = pango_layout_get_text(line.get());
    PangoRectangle box;
    pango_layout_index_to_pos(line.get(), static_cast<int>(whole.find(text)), &box);
    return std::min(box.x, box.x + box.width);
}

TEST(CardLine, ItsPartsComeInReadingOrderWhateverDirectionEachRunsIn) {
    for (const char* kind : {"\u0623\u0631\u0634\u064a\u0641 Tar", "PNG"}) {
        for (const bool mirrored : {false, true}) {
            MenuLook look = {};
            look.family = "Sans", look.scale = 1, look.mirrored = mirrored;
            const TextLayout line = facts_text(look, {kind, "10.2 kB", "23 Nov 2026, 01:14"}, 9);
            const int name = left_of(line, kind), size = left_of(line, "10.2");
            const int day = left_of(line, "23 Nov"), time = left_of(line, "01:14");
            EXPECT_EQ(name > size, mirrored) << kind;
            EXPECT_EQ(size > day, mirrored) << kind;
            EXPECT_LT(day, time) << "the date itself runs to the right";
        }
    }
}

TEST(CardLine, WritesSizeAndDateAsTheUsersLocaleDoes) {
    test::TempFolder folder;
    const std::string locale = folder.path() + "/de_DE.UTF-8";
    ASSERT_EQ(system(("localedef -i de_DE -f UTF-8 " + locale + " >&2").c_str()), 0);
    setenv("LOCPATH", folder.path().c_str(), 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const std::string path = folder.file("a.txt", std::string(10200, 'x'));
    const timespec times[2] = {{1778000000, 0}, {1778000000, 0}};  // in May 2026
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const FileDetails details = details_of_file(path);
    ASSERT_EQ(details.rest.size(), 3u);
    EXPECT_TRUE(details.rest[1].starts_with("10,2")) << details.rest[1];
    EXPECT_NE(details.rest[2].find("Mai"), std::string::npos) << details.rest[2];
    EXPECT_STREQ(localeconv()->decimal_point, ".") << "the program keeps its own locale";
}

TEST(CardLine, NothingInAPartReordersTheOthers) {
    MenuLook look = {};
    look.family = "Sans", look.scale = 1;
    const TextLayout line = facts_text(look, {"a\u202e\u2069", "10 kB"}, 9);
    const std::string shown = pango_layout_get_text(line.get());
    EXPECT_NE(shown.find("a\ufffd\ufffd"), shown.npos) << shown;
}

TEST(Aiming, TheWayToASubmenuIsATriangle) {
    const Area panel = {400, 100, 200, 300};
    EXPECT_TRUE(is_on_the_way({200, 120}, {300, 200}, panel));
    EXPECT_TRUE(is_on_the_way({200, 120}, {390, 390}, panel));
    EXPECT_FALSE(is_on_the_way({200, 120}, {210, 300}, panel)) << "straight down";
    EXPECT_FALSE(is_on_the_way({200, 120}, {100, 140}, panel)) << "away";
}

TEST(Aiming, ItWorksToTheLeftToo) {
    const Area panel = {100, 100, 200, 300};
    EXPECT_TRUE(is_on_the_way({500, 120}, {400, 200}, panel));
    EXPECT_FALSE(is_on_the_way({500, 120}, {600, 140}, panel));
}

TEST(Titles, WhatWouldBreakOrHideALineIsVisible) {
    @autoreleasepool {
        EXPECT_EQ(visible_title(@"a\nb\tc"), "a\u21b5b\u21e5c");
        EXPECT_EQ(visible_title(@"a\x01\x7f"), "a\ufffd\ufffd");
        const unichar reversed[] = {'a', 0x202E, 'b', 0x2028, 'c'};
        EXPECT_EQ(visible_title([NSString stringWithCharacters:reversed length:5]), "a\ufffd"
                                                                                    "b\ufffd"
                                                                                    "c");
        EXPECT_EQ(visible_title(@""), "");
        EXPECT_EQ(visible_title(nil), "");
    }
}

TEST(Titles, WhatCannotBeSeenIsMadeVisible) {
    @autoreleasepool {
        for (const unichar c : {0x061C, 0x200B, 0x200F, 0x2060, 0x206A, 0xFEFF, 0xFFF9, 0x00AD}) {
            const unichar title[] = {'a', c, 'b'};
            EXPECT_EQ(visible_title([NSString stringWithCharacters:title length:3]), "a\ufffd"
                                                                                     "b")
                << std::hex << c;
        }
        const unichar joined[] = {0x0915, 0x200D, 0x0937};  // a joiner that its script needs
        NSString* kept = [NSString stringWithCharacters:joined length:3];
        EXPECT_EQ(visible_title(kept), [kept UTF8String]);
    }
}

TEST(Titles, AnEndlessTitleIsCut) {
    @autoreleasepool {
        NSString* endless = [@"" stringByPaddingToLength:100000 withString:@"x" startingAtIndex:0];
        EXPECT_LT(visible_title(endless).size(), 3000u);
    }
}

TEST(Titles, FoldingForgetsCaseAndAccents) {
    EXPECT_EQ(folded("\u00c9t\u00e9 ABC"), "ete abc");
    EXPECT_EQ(folded("stra\u00dfe"), "strasse");
}

TEST(Desktop, TheScaleComesFromTheServersResources) {
    EXPECT_EQ(DesktopSettings().scale(nullptr), 1);
    EXPECT_EQ(DesktopSettings().scale("Xft.dpi:\t96\n"), 1);
    EXPECT_EQ(DesktopSettings().scale("*foo: 1\nXft.dpi:\t192\n"), 2);
    EXPECT_EQ(DesktopSettings().scale("Xft.dpi: 143"), 1.5);
    EXPECT_EQ(DesktopSettings().scale("Xft.dpi: rubbish"), 1);
    EXPECT_EQ(DesktopSettings().scale("Xft.dpi: 100000"), 4);
}

TEST(Desktop, DarkAndTheFontComeFromItsSettings) {
    test::TempFolder config;
    setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
    unsetenv("GTK_THEME");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    EXPECT_NE(DesktopSettings().font_family(), "");
    config.file("gtk-3.0/settings.ini", "[Settings]\ngtk-font-name = Noto Sans, Bold 11\n"
                                        "gtk-application-prefer-dark-theme=1\n");
    EXPECT_TRUE(DesktopSettings().prefers_dark());
    EXPECT_EQ(DesktopSettings().font_family(), "Noto Sans");
    setenv("GTK_THEME", "Adwaita", 1);
    EXPECT_FALSE(DesktopSettings().prefers_dark()) << "the environment counts first";
    setenv("GTK_THEME", "Adwaita:dark", 1);
    EXPECT_TRUE(DesktopSettings().prefers_dark());
}

TEST(Desktop, TheLookOfMenusFollowsItFromOneToTheNext) {
    test::TempFolder config;
    setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
    unsetenv("GTK_THEME");
    unsetenv("GDK_SCALE");
    @autoreleasepool {
        const MenuLook plain = menu_look(nil, nullptr);
        EXPECT_EQ(plain.font_size, 13);
        EXPECT_EQ(plain.drag_distance, 5);
        config.file("kdeglobals", "[General]\nfont=Noto Sans,15,-1,5,50\nAccentColor=255,255,0\n"
                                  "[KDE]\nStartDragDist=8\n[KScreen]\nScaleFactor=2\n");
        const MenuLook look = menu_look(nil, nullptr);
        EXPECT_EQ(look.font_size, 20);
        EXPECT_EQ(look.scale, 2);
        EXPECT_EQ(look.drag_distance, 16);
        EXPECT_GT(look.row_height, 2 * plain.row_height);
        EXPECT_EQ(look.palette->highlight.red, 1);
        EXPECT_EQ(look.palette->highlight.blue, 0);
        EXPECT_EQ(look.palette->highlight_text.red, 0) << "dark on yellow";
        EXPECT_EQ(look.palette->panel.red, plain.palette->panel.red);
        EXPECT_EQ(menu_look(nil, nullptr).palette, look.palette);
        config.file("kdeglobals", "[General]\nColorScheme=HighContrast\n");
        EXPECT_EQ(menu_look(nil, nullptr).palette->panel.red, 1);
        EXPECT_EQ(menu_look(nil, nullptr).palette->text.red, 0);
        config.file("kdeglobals", "");
        EXPECT_EQ(menu_look(nil, nullptr).palette, plain.palette);
    }
}
