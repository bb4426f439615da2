#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/recording_delegate.h"
#include "support/app.h"

namespace {

class Session : public testing::Test {
  protected:
    void SetUp() override {
        pool_ = [NSAutoreleasePool new];
        test::start_application();
        recorder_ = [RecordingDelegate new];
        root_ = [recorder_ menuNamed:@"root"];
        sub_ = [recorder_ menuNamed:@"sub"];
        deep_ = [recorder_ menuNamed:@"deep"];
        file_ = [recorder_ addItem:@"file" toMenu:root_];
        folder_ = [recorder_ addItem:@"folder" toMenu:root_];
        [folder_ setSubmenu:sub_];
        inner_ = [recorder_ addItem:@"inner" toMenu:sub_];
        [inner_ setSubmenu:deep_];
        leaf_ = [recorder_ addItem:@"leaf" toMenu:deep_];
        [recorder_ nameMenu:sub_ as:@"sub"];  // the item's title has replaced it
        [recorder_ nameMenu:deep_ as:@"deep"];
        session_ = [[MenuSession alloc] initWithMenu:root_];
        [recorder_ takeLog];
    }
    void TearDown() override {
        [session_ close];
        [session_ release];
        [recorder_ release];
        [pool_ release];
    }
    std::string log() { return [recorder_ takeLog]; }

    NSAutoreleasePool* pool_;
    RecordingDelegate* recorder_;
    NSMenu *root_, *sub_, *deep_;
    NSMenuItem *file_, *folder_, *inner_, *leaf_;
    MenuSession* session_;
};

}  // namespace

TEST_F(Session, OpeningAsksForTheItemsThenSaysThatTheMenuOpens) {
    [session_ open];
    EXPECT_EQ(log(), "update root, open root");
    EXPECT_EQ([MenuSession current], session_);
}

TEST_F(Session, LevelsCloseDeepestFirst) {
    [session_ open];
    EXPECT_TRUE([session_ openSubmenuOfItem:folder_]);
    EXPECT_TRUE([session_ openSubmenuOfItem:inner_]);
    EXPECT_EQ([[session_ levels] count], 3u);
    log();
    [session_ close];
    EXPECT_EQ(log(), "close deep, close sub, close root");
    EXPECT_EQ([MenuSession current], nil);
}

TEST_F(Session, ASubmenuOpensAfterItsItemIsHighlighted) {
    [session_ open];
    log();
    [session_ openSubmenuOfItem:folder_];
    EXPECT_EQ(log(), "highlight folder, update sub, open sub");
    [session_ openSubmenuOfItem:folder_];
    EXPECT_EQ(log(), "") << "it is open already";
}

TEST_F(Session, HighlightIsToldOnceAndNilWhenItLeaves) {
    [session_ open];
    log();
    [session_ highlightItem:file_ inMenu:root_];
    [session_ highlightItem:file_ inMenu:root_];
    EXPECT_EQ([session_ highlightedItemOfMenu:root_], file_);
    [session_ highlightItem:nil inMenu:root_];
    EXPECT_EQ(log(), "highlight file, highlight nil");
}

TEST_F(Session, ADisabledItemIsNeitherHighlightedNorOpenedNorPicked) {
    [folder_ setEnabled:NO];
    [session_ open];
    log();
    [session_ highlightItem:folder_ inMenu:root_];
    EXPECT_FALSE([session_ openSubmenuOfItem:folder_]);
    [session_ pickItem:folder_];
    EXPECT_EQ(log(), "");
    EXPECT_FALSE([session_ isEnding]);
}

TEST_F(Session, OpeningAnotherSubmenuClosesTheFirst) {
    NSMenu* other = [recorder_ menuNamed:@"other"];
    NSMenuItem* second = [recorder_ addItem:@"second" toMenu:root_];
    [second setSubmenu:other];
    [recorder_ nameMenu:other as:@"other"];
    [session_ open];
    [session_ openSubmenuOfItem:folder_];
    [session_ openSubmenuOfItem:inner_];
    log();
    EXPECT_TRUE([session_ openSubmenuOfItem:second]);
    EXPECT_EQ(log(), "highlight second, close deep, close sub, update other, open other");
}

TEST_F(Session, AnItemOfAClosedMenuOpensNothing) {
    [session_ open];
    EXPECT_FALSE([session_ openSubmenuOfItem:inner_]);
}

TEST_F(Session, TheFirstEndCounts) {
    [session_ open];
    [session_ cancel];
    [session_ pickItem:file_];
    EXPECT_TRUE([session_ isEnding]);
    EXPECT_EQ([session_ pickedItem], nil);
}

TEST_F(Session, MenusOfEqualTitleAndItemsAreTwoLevels) {
    NSMenu* twin = [recorder_ menuNamed:@"folder"];
    NSMenu* outer = [recorder_ menuNamed:@"folder"];
    NSMenuItem* item = [recorder_ addItem:@"x" toMenu:outer];
    [item setSubmenu:twin];
    MenuSession* session = [[MenuSession alloc] initWithMenu:outer];
    [session open];
    EXPECT_TRUE([session openSubmenuOfItem:item]);
    EXPECT_EQ([[session levels] count], 2u);
    [session close];
    [session release];
}

TEST_F(Session, TheItemByItemPairServesADelegateWithoutMenuNeedsUpdate) {
    ItemByItemDelegate* delegate = [ItemByItemDelegate new];
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"pair"] autorelease];
    for (int i = 0; i < 5; i++) [menu addItemWithTitle:@"old" action:NULL keyEquivalent:@""];
    [menu setDelegate:(id)delegate];
    MenuSession* session = [[MenuSession alloc] initWithMenu:menu];
    [session open];
    ASSERT_EQ([menu numberOfItems], 3);
    EXPECT_STREQ([[[menu itemAtIndex:2] title] UTF8String], "item 2");
    [session close];
    [session release];
    [menu setDelegate:nil];
    [delegate release];
}

TEST_F(Session, ItemsAreEnabledByTheirTargets) {
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"auto"] autorelease];
    NSMenuItem* handled =
        (id)[menu addItemWithTitle:@"a" action:@selector(picked:) keyEquivalent:@""];
    [handled setTarget:recorder_];
    NSMenuItem* refused =
        (id)[menu addItemWithTitle:@"refuse" action:@selector(picked:) keyEquivalent:@""];
    [refused setTarget:recorder_];
    NSMenuItem* header = (id)[menu addItemWithTitle:@"c" action:NULL keyEquivalent:@""];
    NSMenuItem* parent = (id)[menu addItemWithTitle:@"d" action:NULL keyEquivalent:@""];
    [parent setSubmenu:[[[NSMenu alloc] initWithTitle:@""] autorelease]];
    MenuSession* session = [[MenuSession alloc] initWithMenu:menu];
    [session open];
    EXPECT_TRUE([handled isEnabled]);
    EXPECT_FALSE([refused isEnabled]);
    EXPECT_FALSE([header isEnabled]);
    EXPECT_TRUE([parent isEnabled]);
    [session close];
    [session release];
}

TEST_F(Session, OpeningAsksNoSubmenuForItsItems) {
    [root_ setAutoenablesItems:YES];
    [session_ open];
    EXPECT_EQ(log(), "update root, open root");
}

namespace {

std::string shown(NSMenu* menu, NSUInteger modifiers) {
    NSArray* items = [MenuSession visibleItemsOfMenu:menu withModifiers:modifiers];
    return [[[items valueForKey:@"title"] componentsJoinedByString:@" "] UTF8String];
}

NSMenuItem* add_alternate(NSMenu* menu, NSString* title, NSUInteger mask) {
    NSMenuItem* item = (id)[menu addItemWithTitle:title action:NULL keyEquivalent:@""];
    [item setAlternate:YES];
    [item setKeyEquivalentModifierMask:mask];
    return item;
}

}  // namespace

TEST(Alternates, OneOfEachGroupShowsByTheExactModifiers) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    test::start_application();
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [menu addItemWithTitle:@"move" action:NULL keyEquivalent:@""];
    add_alternate(menu, @"copy", NSAlternateKeyMask);
    add_alternate(menu, @"alias", NSShiftKeyMask);
    [menu addItemWithTitle:@"plain" action:NULL keyEquivalent:@""];
    EXPECT_EQ(shown(menu, 0), "move plain");
    EXPECT_EQ(shown(menu, NSAlternateKeyMask), "copy plain");
    EXPECT_EQ(shown(menu, NSShiftKeyMask), "alias plain");
    EXPECT_EQ(shown(menu, NSShiftKeyMask | NSAlternateKeyMask), "move plain");
    EXPECT_EQ(shown(menu, NSAlternateKeyMask | NSAlphaShiftKeyMask), "copy plain");
    [pool release];
}

TEST(Alternates, AnAlternateWithNothingBeforeItStandsForItself) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    test::start_application();
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    add_alternate(menu, @"first", NSShiftKeyMask);
    EXPECT_EQ(shown(menu, 0), "first");
    [pool release];
}
