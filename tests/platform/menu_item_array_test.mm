// Large menus, whose alternates have no objects until somebody asks for them.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>

#include <objc/runtime.h>

#include <algorithm>
#include <vector>

#include "look/shared_strings.h"
#include "objc/last_class.h"
#include "support/app.h"
#include "support/heap.h"

namespace {

int live_values, live_watched_items;

// More than a large menu keeps as objects at its end.
constexpr int rows = 1000;

}  // namespace

// A value that an item represents; counted.
@interface CountedValue : NSObject
@end
@implementation CountedValue
- (instancetype)init {
    if ((self = [super init])) live_values++;
    return self;
}
- (void)dealloc {
    live_values--;
    [super dealloc];
}
@end

// Classes with fields of their own, like a plug-in's.
@interface NumberedItem : NSMenuItem {
  @public
    long number;
}
@end
@implementation NumberedItem
@end

@interface NumberedMenu : NSMenu {
  @public
    long number;
    BOOL odd;
}
@end
@implementation NumberedMenu
@end

// Tells when it goes.
@interface WatchedItem : NSMenuItem
@end
@implementation WatchedItem
- (void)dealloc {
    live_watched_items--;
    [super dealloc];
}
@end

namespace {

class LargeMenu : public testing::Test {
  protected:
    void SetUp() override {
        test::start_application();
        pool = [NSAutoreleasePool new];
        live_values = live_watched_items = 0;
        menu = [[NSMenu alloc] initWithTitle:@"large"];
        [menu setAutoenablesItems:NO];
    }
    void TearDown() override {
        [pool release];
        EXPECT_EQ(live_values, 0) << "the items did not release what they represent";
    }

    void renew_pool() {
        [pool release];
        pool = [NSAutoreleasePool new];
    }

    static NSString* title(int row) { return [NSString stringWithFormat:@"row %d", row]; }

    // An alternate with a submenu and everything else that an item can have.
    static NSMenuItem* make_alternate(int row, Class item_class = [NumberedItem class]) {
        NSMenuItem* item = [[[item_class alloc] initWithTitle:title(row)
                                                       action:@selector(hit:)
                                                keyEquivalent:@""] autorelease];
        [item setAlternate:YES];
        [item setKeyEquivalentModifierMask:row % 2 ? NSShiftKeyMask : NSAlternateKeyMask];
        [item setTag:row];
        [item setTarget:NSApp];
        [item setRepresentedObject:[[CountedValue new] autorelease]];
        NumberedMenu* submenu = [[[NumberedMenu alloc] initWithTitle:title(-row)] autorelease];
        submenu->number = row;
        submenu->odd = row % 2;
        [submenu setDelegate:(id)NSApp];
        [submenu setAutoenablesItems:NO];
        [item setSubmenu:submenu];
        return item;
    }

    void fill(Class item_class = [NumberedItem class]) {
        for (int row = 0; row < rows; row++) {
            @autoreleasepool {
                [menu addItemWithTitle:title(row) action:@selector(hit:) keyEquivalent:@""];
                NSMenuItem* item = make_alternate(row, item_class);
                if (item_class == [NumberedItem class]) {
                    static_cast<NumberedItem*>(item)->number = 10 * row;
                }
                [menu addItem:item];
            }
        }
    }

    void expect_alternate(NumberedItem* item, int row) {
        EXPECT_EQ([item class], [NumberedItem class]);
        EXPECT_TRUE([[item title] isEqualToString:title(row)]);
        EXPECT_TRUE([item isAlternate]);
        EXPECT_TRUE([item isEnabled]);
        EXPECT_EQ([item keyEquivalentModifierMask],
                  NSUInteger(row % 2 ? NSShiftKeyMask : NSAlternateKeyMask));
        EXPECT_EQ([item tag], row);
        EXPECT_EQ([item target], NSApp);
        EXPECT_TRUE(sel_isEqual([item action], @selector(hit:)));
        EXPECT_EQ([[item representedObject] class], [CountedValue class]);
        EXPECT_EQ([item menu], menu);
        EXPECT_EQ(item->number, 10 * row);
        NumberedMenu* submenu = static_cast<NumberedMenu*>([item submenu]);
        ASSERT_EQ([submenu class], [NumberedMenu class]);
        EXPECT_TRUE([[submenu title] isEqualToString:title(-row)]);
        EXPECT_EQ(submenu->number, row);
        EXPECT_EQ(submenu->odd, row % 2);
        EXPECT_EQ([submenu supermenu], menu);
        EXPECT_EQ([submenu delegate], (id)NSApp);
        EXPECT_FALSE([submenu autoenablesItems]);
        EXPECT_EQ([submenu numberOfItems], 0);
        EXPECT_EQ([submenu retainCount], 1u);
    }

    NSAutoreleasePool* pool;
    NSMenu* menu;
};

}  // namespace

TEST_F(LargeMenu, ShowsEachItemAsItWasAdded) {
    fill();
    ASSERT_EQ([menu numberOfItems], 2 * rows);
    for (int row = 0; row < rows; row++) {
        expect_alternate((NumberedItem*)[menu itemAtIndex:2 * row + 1], row);
    }
    [menu release];
}

TEST_F(LargeMenu, KeepsAnItemThatSomebodyHasSeen) {
    fill();
    for (int row = 0; row < rows; row++) {
        NSMenuItem* item = (NSMenuItem*)[menu itemAtIndex:2 * row + 1];
        [item setTitle:@"changed"];
        EXPECT_EQ([[menu itemArray] objectAtIndex:2 * row + 1], item);
        EXPECT_EQ([menu indexOfItem:item], 2 * row + 1);
        EXPECT_TRUE([[[menu itemAtIndex:2 * row + 1] title] isEqualToString:@"changed"]);
    }
    [menu release];
}

TEST_F(LargeMenu, TakesHalfTheMemoryOfItsAlternates) {
    fill();
    const size_t before = test::memory_in_use();
    for (NSMenuItem* item in [menu itemArray]) (void)item;
    const size_t objects = test::memory_in_use() - before;
    // Two objects of at least 144 and 120 bytes each, for all but the last of them.
    EXPECT_GT(objects, rows / 2 * size_t(264));
    [menu release];
}

TEST_F(LargeMenu, KeepsTheItemsThatOthersHold) {
    NSMutableArray* held = [NSMutableArray array];
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = make_alternate(row);
            [held addObject:row % 2 ? (id)item : (id)[item submenu]];
            [menu addItem:item];
        }
    }
    for (int row = 0; row < rows; row++) {
        NSMenuItem* item = (NSMenuItem*)[menu itemAtIndex:row];
        EXPECT_EQ(row % 2 ? (id)item : (id)[item submenu], [held objectAtIndex:row]);
    }
    [held removeAllObjects];
    [menu release];
}

TEST_F(LargeMenu, KeepsItemsWhoseClassTellsThatTheyGo) {
    live_watched_items = rows;
    fill([WatchedItem class]);
    EXPECT_EQ(live_watched_items, rows);
    [menu release];
    EXPECT_EQ(live_watched_items, 0);
}

TEST_F(LargeMenu, KeepsItemsThatAreNamedByTheirOwnFields) {
    std::vector<NSMenuItem*> added;
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = make_alternate(row);
            if (row % 2) [item setTarget:item];
            if (!(row % 2)) [[item submenu] setDelegate:(id)item];
            [menu addItem:item];
            added.push_back(item);
        }
    }
    for (int row = 0; row < rows; row++) {
        NSMenuItem* item = (NSMenuItem*)[menu itemAtIndex:row];
        EXPECT_EQ(item, added[static_cast<size_t>(row)]);
        EXPECT_EQ(row % 2 ? [item target] : (id)[[item submenu] delegate], item);
    }
    [menu release];
}

TEST_F(LargeMenu, KeepsItemsWithAViewOrAnAttributedTitle) {
    NSView* view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 9, 9)] autorelease];
    NSAttributedString* text = [[[NSAttributedString alloc] initWithString:@"text"] autorelease];
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = make_alternate(row);
            if (row % 2) {
                [item setView:view];
            } else {
                [item setAttributedTitle:text];
            }
            [menu addItem:item];
        }
    }
    for (int row = 0; row < rows; row++) {
        NSMenuItem* item = (NSMenuItem*)[menu itemAtIndex:row];
        EXPECT_EQ([item view], row % 2 ? view : nil);
        EXPECT_TRUE(row % 2 || [[item attributedTitle] isEqualToAttributedString:text]);
    }
    [menu release];
}

TEST_F(LargeMenu, KeepsSubmenusWithItemsOrAFont) {
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = make_alternate(row);
            if (row % 2) {
                [[item submenu] addItemWithTitle:@"inside" action:NULL keyEquivalent:@""];
            } else {
                [[item submenu] setFont:[NSFont systemFontOfSize:9]];
            }
            [menu addItem:item];
        }
    }
    for (int row = 0; row < rows; row++) {
        NSMenu* submenu = [(NSMenuItem*)[menu itemAtIndex:row] submenu];
        EXPECT_EQ([submenu numberOfItems], row % 2);
        EXPECT_EQ([submenu font] != nil, row % 2 == 0);
    }
    [menu release];
}

TEST_F(LargeMenu, LosesItemsInAnyOrder) {
    fill();
    for (int i = 0; i < rows; i++) [menu removeItemAtIndex:i + 1];  // the alternates
    renew_pool();
    ASSERT_EQ([menu numberOfItems], rows);
    EXPECT_EQ(live_values, 0);
    for (int row = 0; row < rows; row++)
        [menu insertItem:make_alternate(row) atIndex:rows - row / 2];
    EXPECT_EQ([menu numberOfItems], 2 * rows);
    [menu removeAllItems];
    renew_pool();
    EXPECT_EQ(live_values, 0);
    [menu release];
}

TEST_F(LargeMenu, ReleasesTheItemsThatNobodyHasSeen) {
    fill();
    EXPECT_EQ(live_values, rows);
    [menu release];
    renew_pool();
    EXPECT_EQ(live_values, 0);
}

TEST_F(LargeMenu, LeavesItemsWithoutAMenuWhenItGoes) {
    fill();
    NSArray* items = [[menu itemArray] retain];
    [menu release];
    for (NSMenuItem* item in items) {
        EXPECT_EQ([item menu], nil);
        EXPECT_EQ([[item submenu] supermenu], nil);
    }
    [items release];
}

TEST_F(LargeMenu, FindsTheItemOfAnOpenSubmenu) {
    fill();
    NSMenuItem* item = (NSMenuItem*)[menu itemAtIndex:2 * 300 + 1];
    NSMenuItem* inside = [[[NSMenuItem alloc] initWithTitle:@"inside" action:NULL
                                              keyEquivalent:@""] autorelease];
    [[item submenu] addItem:inside];
    EXPECT_EQ([inside parentItem], item);
    [menu release];
}

TEST_F(LargeMenu, ShowsTheAlternatesOfTheHeldKeys) {
    fill();
    const struct {
        NSUInteger modifiers;
        int remainder;
    } cases[] = {{NSShiftKeyMask, 1}, {NSAlternateKeyMask, 0}, {0, -1}};
    for (const auto& held : cases) {
        NSArray* shown = [MenuSession visibleItemsOfMenu:menu withModifiers:held.modifiers];
        ASSERT_EQ([shown count], NSUInteger(rows));
        for (int row = 0; row < rows; row++) {
            NSMenuItem* item = [shown objectAtIndex:row];
            EXPECT_EQ([item isAlternate], row % 2 == held.remainder);
            EXPECT_TRUE([[item title] isEqualToString:title(row)]);
        }
    }
    [menu release];
}

TEST_F(LargeMenu, ShowsAlternatesThatDifferOnlyInTheirKeys) {
    for (int row = 0; row < rows; row++) {
        [menu addItemWithTitle:@"" action:@selector(hit:) keyEquivalent:@""];
        NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:@""
                                                      action:@selector(hit:)
                                               keyEquivalent:@""];
        [item setAlternate:YES];
        [item setKeyEquivalentModifierMask:row % 2 ? NSShiftKeyMask : NSAlternateKeyMask];
        [menu addItem:item];
        [item release];
    }
    NSArray* shown = [MenuSession visibleItemsOfMenu:menu withModifiers:NSShiftKeyMask];
    for (int row = 0; row < rows; row++) {
        EXPECT_EQ([[shown objectAtIndex:row] isAlternate], row % 2);
    }
    [menu release];
}

// New items get the memory of packed ones.
TEST_F(LargeMenu, MakesNewItemsAndSubmenusWithClearFields) {
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NumberedItem* const item = [[NumberedItem alloc] autorelease];
            NumberedMenu* const submenu = [[NumberedMenu alloc] autorelease];
            for (id object : {static_cast<id>(item), static_cast<id>(submenu)}) {
                const auto* const fields = static_cast<const char*>(static_cast<void*>(object));
                const size_t size = class_getInstanceSize(object_getClass(object));
                EXPECT_TRUE(std::all_of(fields + sizeof(Class), fields + size,
                                        [](char byte) { return byte == 0; }));
            }
            [item initWithTitle:@"" action:NULL keyEquivalent:@""];
            [submenu initWithTitle:@""];
            NumberedItem* const added = static_cast<NumberedItem*>(make_alternate(row));
            added->number = 10 * row;
            [menu addItem:added];
        }
    }
    [menu release];
}

TEST_F(LargeMenu, IsReadWithoutMakingItsItems) {
    fill();
    const size_t before = test::memory_in_use();
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = [menu glanceAtItemAtIndex:2 * row + 1];
            EXPECT_TRUE([[item title] isEqualToString:title(row)]);
            EXPECT_EQ([item tag], row);
            EXPECT_TRUE([[[item submenu] title] isEqualToString:title(-row)]);
        }
    }
    EXPECT_LT(test::memory_in_use(), before + 100 * size_t(264));
    [menu release];
}

TEST_F(LargeMenu, TellsTheFieldsOfItemsWithoutObjects) {
    NSImage* const image = [[[NSImage alloc] initWithSize:NSMakeSize(16, 16)] autorelease];
    for (int row = 0; row < rows; row++) {
        @autoreleasepool {
            NSMenuItem* item = make_alternate(row);
            [item setEnabled:row % 3 != 0];
            if (row % 5 == 0) [item setImage:image];
            if (row % 7 == 0) [item setSubmenu:nil];
            [menu addItem:item];
        }
    }
    int told = 0;
    for (int row = 0; row < rows; row++) {
        AlternateFields fields;
        if (![menu readAlternate:&fields atIndex:row]) continue;
        told++;
        EXPECT_TRUE([fields.title isEqualToString:title(row)]);
        EXPECT_EQ(fields.modifiers, NSUInteger(row % 2 ? NSShiftKeyMask : NSAlternateKeyMask));
        EXPECT_EQ(fields.is_enabled, row % 3 != 0);
        EXPECT_EQ(fields.has_image, row % 5 == 0);
        EXPECT_EQ(fields.has_submenu, row % 7 != 0);
    }
    EXPECT_GT(told, rows / 3);
    [menu itemAtIndex:0];
    AlternateFields fields;
    EXPECT_FALSE([menu readAlternate:&fields atIndex:0]) << "somebody has the object";
    [menu release];
}

TEST_F(LargeMenu, SaysWhetherAnItemHasAView) {
    fill();
    EXPECT_FALSE([menu hasItemWithView]);
    NSAttributedString* const text = [[[NSAttributedString alloc] initWithString:@"text"
                                                                      attributes:nil] autorelease];
    [[menu itemAtIndex:rows] setAttributedTitle:text];
    EXPECT_FALSE([menu hasItemWithView]);
    NSView* const view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 8, 8)] autorelease];
    [[menu itemAtIndex:rows + 1] setView:view];
    EXPECT_TRUE([menu hasItemWithView]);
    [menu release];
}

TEST(SharedStrings, KeepATextThatIsUsedAgainAndAgain) {
    test::start_application();
    @autoreleasepool {
        const unichar folder[] = {'/', 'f', '/'};
        NSString* const first = shared_string(folder, 3);
        for (unichar c = 'a'; c <= 'z'; c++) {
            @autoreleasepool {
                NSString* const name = shared_string(&c, 1);
                NSString* const same = [NSString stringWithCharacters:&c length:1];
                NSString* const owned = copy_of_shared_string(same);
                EXPECT_EQ(owned, name);
                [owned release];
                EXPECT_EQ(shared_string(folder, 3), first);
            }
        }
    }
}

TEST(LastClass, AsksOnceForObjectsOfOneClassAndAgainForAnother) {
    test::start_application();
    @autoreleasepool {
        LastClass known;
        int questions = 0;
        const auto is_text = [&](id object) {
            return known.fits(object, [&] {
                questions++;
                return [object isKindOfClass:[NSString class]];
            });
        };
        NSNumber* const number = [NSNumber numberWithInt:1];
        EXPECT_TRUE(is_text(@"a") && is_text(@"b"));
        EXPECT_EQ(questions, 1);
        EXPECT_FALSE(is_text(number) || is_text(number));
        EXPECT_EQ(questions, 2);
        EXPECT_FALSE(is_text(nil));
        EXPECT_TRUE(is_text(@"c"));
    }
}
