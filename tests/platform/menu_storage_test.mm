#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>
#include <objc/runtime.h>
#include <unistd.h>

#include <string>

#include "menu_classes/menu_changes.h"
#include "menu_classes/menu_storage.h"
#include "support/app.h"
#include "support/heap.h"

@interface UpdateCounter : NSObject {
  @public
    int updates;
}
@end
@implementation UpdateCounter
- (void)menuNeedsUpdate:(NSMenu*)menu {
    (void)menu;
    updates++;
}
@end

@interface KeyTarget : NSObject {
  @public
    int calls;
}
- (void)hit:(id)sender;
@end
@implementation KeyTarget
- (void)hit:(id)sender {
    (void)sender;
    calls++;
}
@end

namespace {

class MenuStorage : public testing::Test {
  protected:
    void SetUp() override {
        test::start_application();
        pool = [NSAutoreleasePool new];
    }
    void TearDown() override {
        set_menu_change_listener(nullptr);
        [NSApp setMainMenu:nil];
        [pool release];
    }
    static NSMenu* menu(NSString* title = @"menu") {
        return [[[NSMenu alloc] initWithTitle:title] autorelease];
    }
    static NSMenuItem* item(NSString* title, SEL action = @selector(hit:)) {
        return [[[NSMenuItem alloc] initWithTitle:title action:action
                                    keyEquivalent:@""] autorelease];
    }
    static NSEvent* command_key(NSString* key) {
        return [NSEvent keyEventWithType:NSKeyDown
                                location:NSZeroPoint
                           modifierFlags:NSCommandKeyMask
                               timestamp:0
                            windowNumber:0
                                 context:nil
                              characters:key
             charactersIgnoringModifiers:key
                               isARepeat:NO
                                 keyCode:0];
    }
    NSAutoreleasePool* pool;
};

int heard_menu_changes, heard_item_changes;
void listen(NSMenu*, NSMenuItem* item) { (item ? heard_item_changes : heard_menu_changes)++; }

}  // namespace

TEST_F(MenuStorage, ThousandsOfMenusMakeNoWindows) {
    const NSUInteger windows = [[NSApp windows] count];
    NSMenu* root = menu();
    for (int i = 0; i < 4000; i++) {
        NSMenuItem* parent = item(@"parent");
        [parent setSubmenu:menu()];
        [[parent submenu] addItem:item(@"child")];
        [root addItem:parent];
    }
    EXPECT_EQ([[NSApp windows] count], windows);
    EXPECT_FALSE([root hasStockRepresentation]);
    [root removeAllItems];
    EXPECT_EQ([root numberOfItems], 0);
    EXPECT_EQ([[NSApp windows] count], windows);
}

TEST_F(MenuStorage, TheDelegateIsNotAskedWhileItemsAreAddedAndChanged) {
    UpdateCounter* counter = [[UpdateCounter new] autorelease];
    NSMenu* root = menu();
    [root setDelegate:counter];
    for (int i = 0; i < 100; i++) {
        NSMenuItem* parent = item(@"parent");
        [parent setSubmenu:menu()];
        [root addItem:parent];
        [parent setEnabled:NO];
        [parent setTitle:@"other"];
    }
    [root removeAllItems];
    EXPECT_EQ(counter->updates, 0);
    [root update];
    EXPECT_EQ(counter->updates, 1);
    [root setDelegate:nil];
}

TEST_F(MenuStorage, ChangesOfAMenuWithoutAViewReachTheListener) {
    heard_menu_changes = heard_item_changes = 0;
    NSMenu* root = menu();
    [root addItem:item(@"a")];
    set_menu_change_listener(listen);
    [root addItem:item(@"b")];
    EXPECT_EQ(heard_menu_changes, 1);
    [(NSMenuItem*)[root itemAtIndex:1] setTitle:@"c"];
    EXPECT_EQ(heard_item_changes, 1);
    [root removeItemAtIndex:0];
    EXPECT_EQ(heard_menu_changes, 2);
}

TEST_F(MenuStorage, TwoMenusOfEqualContentAreDifferent) {
    NSMenu *a = menu(), *b = menu();
    EXPECT_FALSE([a isEqual:b]);
    EXPECT_TRUE([a isEqual:a]);
    NSMutableSet* set = [NSMutableSet set];
    [set addObject:a];
    [set addObject:b];
    EXPECT_EQ([set count], 2u);
}

TEST_F(MenuStorage, RemovingAllItemsDetachesThemAndTheirSubmenus) {
    NSMenu* root = menu();
    NSMenuItem* parent = item(@"parent");
    NSMenu* submenu = menu();
    [parent setSubmenu:submenu];
    [root addItem:parent];
    ASSERT_EQ([submenu supermenu], root);
    [root removeAllItems];
    EXPECT_EQ([parent menu], nil);
    EXPECT_EQ([parent submenu], submenu);
    EXPECT_EQ([submenu supermenu], nil);
    [root removeAllItems];
    EXPECT_EQ([root numberOfItems], 0);
}

TEST_F(MenuStorage, AnItemOfAnotherMenuIsNotAdded) {
    NSMenu *a = menu(), *b = menu();
    NSMenuItem* shared = item(@"shared");
    [a addItem:shared];
    [b addItem:shared];
    EXPECT_EQ([b numberOfItems], 0);
    EXPECT_EQ([shared menu], a);
}

TEST_F(MenuStorage, AnIndexOutOfRangeRaises) {
    bool raised = false;
    @try {
        [menu() removeItemAtIndex:0];
    } @catch (NSException* exception) {
        raised = true;
    }
    EXPECT_TRUE(raised);
}

TEST_F(MenuStorage, TheStockViewIsMadeOnRequestWithTheItemsThatAreThere) {
    NSMenu* root = menu();
    [root addItem:item(@"one")];
    [root addItem:item(@"two")];
    NSMenuView* view = [root menuRepresentation];
    ASSERT_NE(view, nil);
    EXPECT_TRUE([root hasStockRepresentation]);
    EXPECT_NE([root window], nil);
    EXPECT_EQ([view window], [root window]);
    EXPECT_STREQ([[[[view menuItemCellForItemAtIndex:1] menuItem] title] UTF8String], "two");
    [root addItem:item(@"three")];
    EXPECT_NE([view menuItemCellForItemAtIndex:2], nil);
    [root sizeToFit];
    EXPECT_GT(NSHeight([[root window] frame]), 30);
    [root removeAllItems];
    EXPECT_EQ([root numberOfItems], 0);
}

TEST_F(MenuStorage, TheMainMenuIsShownAndItsSubmenusOpen) {
    NSMenu* main = menu();
    NSMenuItem* parent = item(@"File", NULL);
    [main addItem:parent];
    NSMenu* file = menu(@"File");
    [file addItem:item(@"Open")];
    [main setSubmenu:file forItem:parent];
    [NSApp setMainMenu:main];
    [main display];
    EXPECT_TRUE([[main window] isVisible]);
    [file display];
    EXPECT_TRUE([[file window] isVisible]);
    EXPECT_EQ([main attachedMenu], file);
    [file close];
    [main close];
    EXPECT_FALSE([[main window] isVisible]);
}

TEST_F(MenuStorage, KeyEquivalentsReachSubmenusThatWereNeverShown) {
    KeyTarget* target = [[KeyTarget new] autorelease];
    NSMenu* main = menu();
    NSMenuItem* parent = item(@"File", NULL);
    NSMenu* file = menu(@"File");
    NSMenuItem* open = item(@"Open");
    [open setKeyEquivalent:@"o"];
    [open setTarget:target];
    [file addItem:open];
    [main addItem:parent];
    [main setSubmenu:file forItem:parent];
    [NSApp setMainMenu:main];
    EXPECT_TRUE([main performKeyEquivalent:command_key(@"o")]);
    EXPECT_EQ(target->calls, 1);
    EXPECT_FALSE([main performKeyEquivalent:command_key(@"z")]);
}

TEST_F(MenuStorage, APopUpButtonShowsItsSelection) {
    NSPopUpButton* button = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 100, 24)
                                                        pullsDown:NO] autorelease];
    [button addItemWithTitle:@"first"];
    [button addItemWithTitle:@"second"];
    [button selectItemAtIndex:1];
    EXPECT_STREQ([[button titleOfSelectedItem] UTF8String], "second");
    EXPECT_STREQ([[[button selectedItem] title] UTF8String], "second");
    EXPECT_EQ([[[button menu] window] level], NSPopUpMenuWindowLevel);
    [[button menu] removeAllItems];
    EXPECT_EQ([button numberOfItems], 0);
}

TEST_F(MenuStorage, ACopyHasItsOwnItems) {
    NSMenu* root = menu(@"title");
    [root addItem:item(@"one")];
    NSMenu* copy = [[root copy] autorelease];
    EXPECT_EQ([copy numberOfItems], 1);
    EXPECT_NE([copy itemAtIndex:0], [root itemAtIndex:0]);
    EXPECT_STREQ([[copy title] UTF8String], "title");
}

TEST_F(MenuStorage, AMenuKeepsItsFont) {
    NSMenu* root = menu();
    EXPECT_EQ([root font], nil);
    NSFont* font = [NSFont systemFontOfSize:20];
    [root setFont:font];
    EXPECT_EQ([root font], font);
    [root setFont:nil];
    EXPECT_EQ([root font], nil);
}

TEST_F(MenuStorage, TheDescriptorOfAMenuPlugInIsIgnored) {
    NSMenu* root = menu();
    [root addItem:item(@"one")];
    [root _setContextMenuPluginAEDesc:nullptr];
    EXPECT_EQ([root numberOfItems], 1);
}

TEST_F(MenuStorage, AViewThatWasMadeBeforeTheItemsShowsThem) {
    NSMenu* root = menu();
    NSMenuView* view = [root menuRepresentation];
    [root addItem:item(@"one")];
    [root addItem:item(@"two")];
    [root sizeToFit];
    EXPECT_STREQ([[[[view menuItemCellForItemAtIndex:1] menuItem] title] UTF8String], "two");
    [root removeItemAtIndex:0];
    [root sizeToFit];
    EXPECT_STREQ([[[[view menuItemCellForItemAtIndex:0] menuItem] title] UTF8String], "two");
}

TEST_F(MenuStorage, EmptyMenusShareNothingThatCanBeSeen) {
    NSMenu *one = menu(), *other = menu();
    EXPECT_EQ([[one itemArray] count], 0u);
    EXPECT_EQ([one indexOfItemWithTitle:@"a"], -1);
    [one addItem:item(@"a")];
    EXPECT_EQ([one numberOfItems], 1);
    EXPECT_EQ([other numberOfItems], 0);
    [one removeItemAtIndex:0];
    [one addItem:item(@"b")];
    EXPECT_STREQ([[[one itemAtIndex:0] title] UTF8String], "b");
    EXPECT_EQ([menu() numberOfItems], 0);
}

TEST_F(MenuStorage, AMenuThatHasNoItemsIsOneAllocation) {
    const int count = 1000;
    NSMutableArray* menus = [NSMutableArray arrayWithCapacity:count];
    [menus addObject:menu()];
    const size_t before = test::memory_in_use();
    for (int i = 1; i < count; i++) {
        NSMenu* made = [[NSMenu alloc] initWithTitle:@"title"];
        [menus addObject:made];
        [made release];
    }
    const size_t of_each = (test::memory_in_use() - before) / count;
    EXPECT_LE(of_each, static_cast<long>(class_getInstanceSize([NSMenu class])) + 48);
    EXPECT_GE(of_each, static_cast<long>(class_getInstanceSize([NSMenu class])) - 8);
}

// Opens the popup's first level and closes it.
@interface LevelOpener : NSObject <MenuTracker>
@end
@implementation LevelOpener
- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)event, (void)view, (void)font;
    [session open];
    [session close];
}
@end

// The sanitizer's allocator keeps freed memory for a while.
static long private_kilobytes() {
    if (test::has_sanitizers_heap()) return test::memory_in_use() / 1024;
    return test::anonymous_memory(getpid()) / 1024;
}

TEST_F(MenuStorage, TheMemoryOfALargeLevelGoesBackOnceItsPopupIsOver) {
    LevelOpener* opener = [[LevelOpener new] autorelease];
    long taken = 0;
    const auto popup_leaves = [&](int items) {
        const long before = private_kilobytes();
        void* after_the_items;  // kept, so that the allocator cannot trim its end
        @autoreleasepool {
            NSMenu* root = menu();
            for (int i = 0; i < items; i++) [root addItem:item(@"child")];
            after_the_items = malloc(2000);
            [NSMenu setContextMenuTracker:opener];
            [NSMenu popUpContextMenu:root withEvent:command_key(@"a") forView:nil];
            [NSMenu setContextMenuTracker:nil];
            taken = private_kilobytes() - before;
        }
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
        const long left = private_kilobytes() - before;
        free(after_the_items);
        return left;
    };
    popup_leaves(100);
    const long left = popup_leaves(100000);
    EXPECT_GT(taken, 15000);
    EXPECT_LT(left, taken / 10);
}
