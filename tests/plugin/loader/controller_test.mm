#include "controller/DVDelvio.h"

#include <host/modifier_keys.h>

#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Proxy.h"
#include "menus/DVDelvio+Selection.h"
#include "plugin/loader/recording_host.h"
#include "plugin/menu_fixture.h"
#include "preview/DVDelvio+HoverPreview.h"
#include "preview/DVPreviewWindowController.h"
#include "support/ht.h"
#include "tree/dv_scan.h"
#include "tree/dv_tree.h"

namespace {

using test::string_of;
using test::titles_of;
using test::Titles;
using test::urls_of;

class Controller : public test::MenuTest {
  protected:
    Controller() : host_([RecordingHost new]) { [host_menu_ setDelegate:(id)host_]; }
    ~Controller() override {
        set_held_modifier_flags(0);
        [host_menu_ setDelegate:nil];
        [host_ release];
    }
    BOOL invoked() { return [[controller_ valueForKey:@"isInvoked"] boolValue]; }

    RecordingHost* host_;
};

}  // namespace

TEST_F(Controller, ThereIsOne) {
    EXPECT_EQ([DVDelvio sharedDelvio], controller_);
    EXPECT_EQ([controller_ finderMenu], nil);
    EXPECT_FALSE(invoked());
}

TEST_F(Controller, ItsRecordIsReady) {
    EXPECT_EQ(dv_->started, 1u);
    ASSERT_NE(dv_->hash_table, nullptr);
    EXPECT_EQ(dv_->hash_table->bucket_count, 97u);
    ASSERT_NE(dv_->path_buffer, nullptr);
    EXPECT_EQ(dv_->path_buffer[0], 0);
    EXPECT_EQ(dvFontSize, 0u);
    EXPECT_EQ(dv_->rootMenuCollapseThreshold, 10);
}

TEST_F(Controller, TakingOverPutsItInFrontOfTheHostsDelegate) {
    EXPECT_EQ(take_over(), host_menu_);
    EXPECT_EQ([host_menu_ delegate], controller_);
    EXPECT_EQ([controller_ finderMenu], host_menu_);
    EXPECT_EQ(dv_->count, 1);
    EXPECT_TRUE(invoked());
    release();
    EXPECT_EQ([host_menu_ delegate], host_);
    EXPECT_EQ([controller_ finderMenu], nil);
    EXPECT_EQ(dv_->count, 0);
    EXPECT_FALSE(invoked());
}

TEST_F(Controller, TakingOverMakesTheHostFillItsMenu) {
    [host_ setItemToAdd:@"Open"];
    take_over();
    EXPECT_EQ([host_ log], "open update");
    EXPECT_EQ(titles_of(host_menu_), Titles({"-", "Open"}));
    release();
    EXPECT_EQ(titles_of(host_menu_), Titles({"Open"}));
}

TEST_F(Controller, SwitchedOffLeavesTheMenuUntouched) {
    set("delvio_is_on", 0);
    EXPECT_EQ(take_over(), host_menu_);
    EXPECT_EQ([host_menu_ delegate], host_);
    EXPECT_EQ([host_menu_ numberOfItems], 0);
    EXPECT_EQ(dv_->count, 0);
    EXPECT_FALSE(invoked());
    EXPECT_EQ([host_ log], "");
}

TEST_F(Controller, ShiftLeavesTheMenuUntouched) {
    set_held_modifier_flags(NSShiftKeyMask);
    EXPECT_EQ(take_over(), host_menu_);
    EXPECT_EQ([host_menu_ delegate], host_);
    EXPECT_EQ([host_menu_ numberOfItems], 0);
    EXPECT_EQ(dv_->count, 0);
    set_held_modifier_flags(NSAlternateKeyMask);
    take_over();
    EXPECT_EQ([host_menu_ delegate], controller_);
}

TEST_F(Controller, ReleasingWithoutATakenMenuFreesWhatIsHeldAndKeepsTheCountAtNone) {
    set("delvio_is_on", 0);
    take_over();
    dv_->root = dv_build_single_elem(folder_.file("a").c_str(), 0, 0);
    const uint32_t freed = free_count;
    release();
    EXPECT_EQ(dv_->count, 0);
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(free_count, freed + 1);
    EXPECT_FALSE(invoked());
}

TEST_F(Controller, AnEarlyReturnIsReleasedLikeAnyMenu) {
    select({folder_.file("a")});
    [controller_ dvPointerMoved];
    NSTimer* timer = [[[controller_ valueForKey:@"hoverPreviewTimer"] retain] autorelease];
    DVPreviewWindowController* preview = [controller_ valueForKey:@"previewWindowController"];
    [preview showPreviewWindow:nil];
    ASSERT_TRUE([timer isValid]);
    ASSERT_TRUE([preview isVisible]);
    set_held_modifier_flags(NSShiftKeyMask);
    NSMenu* other = [[[NSMenu alloc] initWithTitle:@"other"] autorelease];
    EXPECT_EQ([controller_ setCurrentMenu:other withProxyDelegate:nil], other);
    EXPECT_EQ(dv_->count, 1) << "untouched";
    release();
    EXPECT_FALSE([timer isValid]);
    EXPECT_EQ([controller_ valueForKey:@"hoverPreviewTimer"], nil);
    EXPECT_FALSE([preview isVisible]);
    EXPECT_EQ(dvDidGetURLs, 0);
    EXPECT_FALSE(invoked());
    EXPECT_EQ(dv_->root, nullptr);
}

TEST_F(Controller, TheLastReleaseLogsWhatItFrees) {
    select({folder_.file("a")});
    const std::string trees = test::formatted(
        "Delvio: Free'ing trees; root = %p, forest = %p open_with = %p, move_copy = %p, "
        "running_apps = %p\n",
        dv_->root, dv_->forest, dv_->open_with, dv_->copies, dv_->running_apps);
    const std::string before = "Delvio: Disabling event tap\nDelvio: Event tap status: 0\n";
    const std::string after = "Delvio: Free'ing menus and removing event handlers\n";
    EXPECT_EQ(log_of([&] { release(); }), before + trees + after);
    select({folder_.file("b")});
    dv_->file_op_in_progress = 1;
    EXPECT_EQ(log_of([&] { release(); }), before + after) << "the trees are kept";
    dv_->file_op_in_progress = 0;
    release();
    take_over();
    NSMenu* other = [[[NSMenu alloc] initWithTitle:@"other"] autorelease];
    [controller_ setCurrentMenu:other withProxyDelegate:nil];
    EXPECT_EQ(log_of([&] { release(); }), before) << "one menu is still open";
}

TEST_F(Controller, NestedMenusFreeTheTreesAtTheSecondRelease) {
    const uint32_t kept = alloc_count - free_count;
    select({folder_.folder("outer")});
    NSMenu* inner = [[[NSMenu alloc] initWithTitle:@"inner"] autorelease];
    [controller_ setCurrentMenu:inner withProxyDelegate:nil];
    EXPECT_EQ(dv_->count, 2);
    EXPECT_EQ(dv_->root, nullptr) << "the outer menu's roots are in the forest";
    ASSERT_NE(dv_->forest, nullptr);
    EXPECT_GT(alloc_count - free_count, kept);
    release();
    EXPECT_EQ(dv_->count, 1);
    EXPECT_NE(dv_->forest, nullptr);
    EXPECT_GT(alloc_count - free_count, kept);
    release();
    EXPECT_EQ(dv_->count, 0);
    EXPECT_EQ(dv_->forest, nullptr);
    EXPECT_EQ(alloc_count - free_count, kept);
}

TEST_F(Controller, AFileOperationKeepsTheTrees) {
    select({folder_.folder("a")});
    dv_tree_t* root = dv_->root;
    dv_->file_op_in_progress = 1;
    release();
    EXPECT_EQ(dv_->root, root);
    dv_->file_op_in_progress = 0;
    release();
    EXPECT_EQ(dv_->root, nullptr);
}

TEST_F(Controller, EverySlotIsFreed) {
    take_over();
    dv_tree_t** const slots[] = {&dv_->root,      &dv_->custom, &dv_->forest,
                                 &dv_->open_with, &dv_->copies, &dv_->running_apps};
    for (dv_tree_t** slot : slots) {
        *slot = dv_build_single_elem(folder_.file("a").c_str(), 0, 0);
    }
    const uint32_t freed = free_count;
    release();
    EXPECT_EQ(free_count, freed + 6);
    for (dv_tree_t** slot : slots) EXPECT_EQ(*slot, nullptr);
}

TEST_F(Controller, ASeparateMenuIsEmptiedAndTheHostsKeepsItsDelegate) {
    set("finderInSeparateSubmenu", 1);
    [host_menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
    NSMenu* proxy = [[take_over() retain] autorelease];
    EXPECT_NE(proxy, host_menu_);
    EXPECT_EQ([proxy class], [host_menu_ class]);
    EXPECT_EQ([proxy delegate], controller_);
    EXPECT_EQ([host_menu_ delegate], host_);
    EXPECT_EQ([host_ log], "open update") << "asked directly";
    release();
    EXPECT_EQ([proxy numberOfItems], 0);
    EXPECT_EQ([proxy delegate], nil);
    EXPECT_EQ([host_menu_ delegate], host_);
    EXPECT_EQ(titles_of(host_menu_), Titles({"Open"}));
}

TEST_F(Controller, ASeparateMenuCanBeTakenAgain) {
    set("finderInSeparateSubmenu", 1);
    for (int i = 0; i < 3; i++) {
        NSMenu* proxy = select({folder_.folder("a"), folder_.file("b")});
        EXPECT_EQ(titles_of(proxy), Titles({"a", "-", "b", "b", "-", "Finder"}));
        release();
    }
}

TEST_F(Controller, TheProxyIsOfTheGivenClass) {
    set("finderInSeparateSubmenu", 1);
    Class kind = [RecordingMenu class];
    NSMenu* proxy = [controller_ setCurrentMenu:host_menu_ withProxyDelegate:nil withClass:kind];
    EXPECT_EQ([proxy class], kind);
}

TEST_F(Controller, TheHostsClearingKeepsTheRootItems) {
    select({folder_.folder("a")});
    [host_menu_ addItemWithTitle:@"Open" action:nullptr keyEquivalent:@""];
    [controller_ handleRemoveAllItemsPre:host_menu_];
    EXPECT_EQ(titles_of(host_menu_), Titles({"Open"}));
    [host_menu_ removeAllItems];
    [controller_ handleRemoveAllItemsPost:host_menu_];
    EXPECT_EQ(titles_of(host_menu_), Titles({"a", "-"}));
}

TEST_F(Controller, ClearingAnotherMenuTouchesNothing) {
    select({folder_.folder("a")});
    NSMenu* other = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    [controller_ handleRemoveAllItemsPre:other];
    [controller_ handleRemoveAllItemsPost:other];
    EXPECT_EQ(titles_of(host_menu_), Titles({"a", "-"}));
    EXPECT_EQ([other numberOfItems], 0);
}

TEST_F(Controller, AMenuThatRefusesARemovalIsLetGoAnyway) {
    RecordingMenu* menu = [[[RecordingMenu alloc] initWithTitle:@""] autorelease];
    [controller_ setCurrentMenu:menu withProxyDelegate:nil];
    [controller_ setSelectedFiles:urls_of({folder_.folder("a"), folder_.file("b")})];
    [menu setRefusesRemoval:YES];
    EXPECT_EQ(log_of([&] { [controller_ removeRootItems]; }),
              "Delvio: Caught exception removing root items.\n");
    [menu setRefusesRemoval:NO];
    EXPECT_EQ([menu numberOfItems], 5);
    EXPECT_EQ([[controller_ valueForKey:@"rootItems"] count], 0u);
}

TEST_F(Controller, TheFontSizeIsReadWithEachMenu) {
    set("font_size", 14);
    take_over();
    EXPECT_EQ(dvFontSize, 14u);
}

TEST_F(Controller, DelayedChangedItemsTellsTheMenuOfEachItem) {
    RecordingMenu* menu = [[[RecordingMenu alloc] initWithTitle:@""] autorelease];
    [menu addItemWithTitle:@"a" action:nullptr keyEquivalent:@""];
    [menu addItemWithTitle:@"b" action:nullptr keyEquivalent:@""];
    [menu takeChanged];
    [controller_ delayedChangedItems:menu];
    EXPECT_STREQ([[[menu takeChanged] componentsJoinedByString:@" "] UTF8String], "a b");
    [controller_ notificationReceived:nil];
}

TEST_F(Controller, TheRecordHoldsTheMenuUntilItsRelease) {
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@"short-lived"];
    [controller_ setCurrentMenu:menu withProxyDelegate:nil];
    [menu release];
    EXPECT_STREQ([[[controller_ finderMenu] title] UTF8String], "short-lived");
    release();
}
