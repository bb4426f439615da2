#include "menus/DVDelvio+Proxy.h"

#include "items/DVMenu.h"
#include "items/DVMenuItem.h"
#include "menus/DVDelvio+Population.h"
#include "plugin/loader/recording_host.h"
#include "plugin/menu_fixture.h"

namespace {

using test::titles_of;
using test::Titles;

class Proxy : public test::MenuTest {
  protected:
    Proxy() : host_([RecordingHost new]), silent_([SilentHost new]) {
        [host_menu_ setDelegate:(id)host_];
    }
    ~Proxy() override {
        [host_menu_ setDelegate:nil];
        [silent_ release];
        [host_ release];
    }
    // Takes the menu over from a delegate, and forgets the messages that the delegate got during
    // that.
    void take_over_from(id delegate) {
        [host_menu_ setDelegate:delegate];
        take_over();
        [host_ log];
    }
    NSMenu* submenu_of(int items) {
        DVMenu* menu = [[[DVMenu alloc] initWithTitle:@"" andTree:nullptr] autorelease];
        for (int i = 0; i < items; i++) {
            [menu addItemWithTitle:@"x" action:nullptr keyEquivalent:@""];
        }
        return menu;
    }
    DVMenuItem* our_item() {
        return static_cast<DVMenuItem*>([select({folder_.folder("a")}) itemAtIndex:0]);
    }

    RecordingHost* host_;
    SilentHost* silent_;
};

}  // namespace

TEST_F(Proxy, CallsAboutTheHostsMenuGoToItsDelegate) {
    take_over_from(host_);
    id target = nil;
    SEL action = nullptr;
    EXPECT_EQ([controller_ numberOfItemsInMenu:host_menu_], 42);
    [controller_ menuNeedsUpdate:host_menu_];
    [controller_ menuDidClose:host_menu_];
    [controller_ menuWillOpen:host_menu_];
    EXPECT_FALSE([controller_ menu:host_menu_ updateItem:nil atIndex:0 shouldCancel:NO]);
    EXPECT_TRUE([controller_ menuHasKeyEquivalent:host_menu_
                                         forEvent:nil
                                           target:&target
                                           action:&action]);
    EXPECT_EQ(target, host_);
    EXPECT_EQ([host_ log], "count update close open item key");
}

TEST_F(Proxy, CallsAboutOurMenusAreAnsweredHere) {
    take_over_from(host_);
    NSMenu* menu = submenu_of(5);
    EXPECT_EQ([controller_ numberOfItemsInMenu:menu], 5);
    [controller_ menuNeedsUpdate:menu];
    [controller_ menuDidClose:menu];
    [controller_ menuWillOpen:menu];
    EXPECT_TRUE([controller_ menu:menu updateItem:nil atIndex:0 shouldCancel:NO]);
    EXPECT_FALSE([controller_ menuHasKeyEquivalent:menu
                                          forEvent:nil
                                            target:nullptr
                                            action:nullptr]);
    EXPECT_EQ([host_ log], "");
}

TEST_F(Proxy, WhatTheHostsDelegateLacksIsAnsweredHere) {
    take_over_from(silent_);
    const NSInteger count = [host_menu_ numberOfItems];
    EXPECT_EQ([controller_ numberOfItemsInMenu:host_menu_], count);
    EXPECT_TRUE([controller_ menu:host_menu_ updateItem:nil atIndex:0 shouldCancel:NO]);
    EXPECT_FALSE([controller_ menuHasKeyEquivalent:host_menu_
                                          forEvent:nil
                                            target:nullptr
                                            action:nullptr]);
    [controller_ menuNeedsUpdate:host_menu_];
    [controller_ menuWillOpen:host_menu_];
}

TEST_F(Proxy, WithoutAHostDelegateEverythingIsAnsweredHere) {
    take_over_from(nil);
    EXPECT_EQ([controller_ numberOfItemsInMenu:host_menu_], [host_menu_ numberOfItems]);
    EXPECT_TRUE([controller_ menu:host_menu_ updateItem:nil atIndex:0 shouldCancel:YES]);
}

TEST_F(Proxy, ASeparateMenuForwardsNothing) {
    set("finderInSeparateSubmenu", 1);
    take_over_from(host_);
    EXPECT_NE([controller_ numberOfItemsInMenu:host_menu_], 42);
    [controller_ menuNeedsUpdate:host_menu_];
    EXPECT_EQ([host_ log], "");
}

TEST_F(Proxy, HighlightingAnItemOfTheHostTellsItsDelegateNothing) {
    DVMenuItem* ours = our_item();
    NSMenuItem* theirs = static_cast<NSMenuItem*>([host_menu_ addItemWithTitle:@"Open"
                                                                        action:nullptr
                                                                 keyEquivalent:@""]);
    [controller_ menu:host_menu_ willHighlightItem:ours];
    EXPECT_EQ([controller_ valueForKey:@"_currentlyHighlightedItem"], ours);
    [host_ log];
    [controller_ menu:host_menu_ willHighlightItem:theirs];
    EXPECT_EQ([host_ log], "");
    EXPECT_EQ([controller_ valueForKey:@"_currentlyHighlightedItem"], nil);
    [controller_ menu:host_menu_ willHighlightItem:ours];
    [host_ log];
    [controller_ menu:host_menu_ willHighlightItem:nil];
    EXPECT_EQ([host_ log], "");
    EXPECT_EQ([controller_ valueForKey:@"_currentlyHighlightedItem"], nil);
}

TEST_F(Proxy, HighlightingOurItemTellsTheHostsDelegateWhateverTheMenu) {
    folder_.folder("a/b");
    DVMenuItem* ours = our_item();
    NSMenu* level = open(ours);
    [host_ log];
    [controller_ menu:level willHighlightItem:static_cast<NSMenuItem*>([level itemAtIndex:0])];
    EXPECT_EQ([host_ log], "highlight");
    EXPECT_EQ([controller_ valueForKey:@"_currentlyHighlightedItem"], [level itemAtIndex:0]);
}

TEST_F(Proxy, ItemsStandAtTheTopInTheirOrderBeforeTheHosts) {
    [host_menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
    take_over();
    [controller_ removeRootItems];
    for (NSString* title in @[ @"A", @"B", @"C" ]) {
        NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:title
                                                       action:nullptr
                                                keyEquivalent:@""] autorelease];
        [controller_ addItem:item toMenu:host_menu_];
    }
    EXPECT_EQ(titles_of(host_menu_), Titles({"A", "B", "C", "Open"}));
}

TEST_F(Proxy, ItemsOfOtherMenusStandAtTheEnd) {
    take_over();
    NSMenu* menu = submenu_of(1);
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"last" action:nullptr
                                            keyEquivalent:@""] autorelease];
    [controller_ addItem:item toMenu:menu];
    EXPECT_EQ(titles_of(menu), Titles({"x", "last"}));
    [controller_ removeRootItems];
    EXPECT_EQ(titles_of(menu), Titles({"x", "last"}));
}

TEST_F(Proxy, EachCallIsLoggedWithWhetherTheHostAnswersIt) {
    const auto calls = [&] {
        [controller_ numberOfItemsInMenu:nil];
        [controller_ menuNeedsUpdate:nil];
        [controller_ menuDidClose:nil];
        [controller_ menu:nil updateItem:nil atIndex:0 shouldCancel:NO];
        [controller_ menuHasKeyEquivalent:nil forEvent:nil target:nullptr action:nullptr];
    };
    const auto lines = [](int all, int closing) {
        return test::formatted("Delvio: Forward numberOfItemsInMenu: %d\n"
                               "Delvio: Forward menuNeedsUpdate: %d\n"
                               "Delvio: Forward menuDidClose: %d\n"
                               "Delvio: Forward menu:updateItem:atIndex:shouldCancel: %d\n"
                               "Delvio: Forward menuHasKeyEquivalent:forEvent:target:action: %d\n",
                               all, all, closing, all, all);
    };
    take_over_from(host_);
    EXPECT_EQ(log_of(calls), lines(1, 1));
    EXPECT_EQ([host_ log], "") << "another menu's";
    release();
    take_over_from(silent_);
    EXPECT_EQ(log_of(calls), lines(0, 1));
    release();
    take_over_from(nil);
    EXPECT_EQ(log_of(calls), lines(0, 0));
    EXPECT_EQ(log_of(calls, 0), "");
}

TEST_F(Proxy, HighlightsAreLogged) {
    [host_menu_ setDelegate:(id)silent_];
    DVMenuItem* ours = our_item();
    EXPECT_EQ(log_of([&] { [controller_ menu:host_menu_ willHighlightItem:ours]; }),
              test::formatted("Delvio: Highlight: %p item: %p\n"
                              "Delvio: Forward menu:willHighlightItem: 0\n",
                              host_menu_, ours));
    EXPECT_EQ(log_of([&] { [controller_ menu:host_menu_ willHighlightItem:nil]; }),
              test::formatted("Delvio: Highlight: %p item: (nil)\n"
                              "Delvio: No item. Hiding preview..\n",
                              host_menu_));
}

TEST_F(Proxy, AddedItemsAreLogged) {
    take_over();
    NSMenu* menu = submenu_of(0);
    NSMenuItem* item = [[[NSMenuItem alloc] initWithTitle:@"new" action:nullptr
                                            keyEquivalent:@""] autorelease];
    EXPECT_EQ(log_of([&] { [controller_ addItem:item toMenu:menu]; }),
              test::formatted("Delvio: Add item 'new' to menu %p [root = %p]\n", menu, host_menu_));
}
