#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/app.h"

// An item that counts what it is told, also after its end.
static int told_values;

@interface BoundItem : NSMenuItem
@end

@implementation BoundItem

- (void)setValue:(id)value forKey:(NSString*)key {
    told_values++;
    [super setValue:value forKey:key];
}

@end

namespace {

class MenuItem : public testing::Test {
  protected:
    void SetUp() override {
        test::start_application();
        pool = [NSAutoreleasePool new];
        root = [[NSMenu alloc] initWithTitle:@"root"];
        item = [[NSMenuItem alloc] initWithTitle:@"item" action:@selector(copy:) keyEquivalent:@""];
    }
    void TearDown() override {
        [item release];
        [root release];
        [pool release];
    }
    static NSMenu* submenu(NSString* title = @"own title") {
        return [[[NSMenu alloc] initWithTitle:title] autorelease];
    }
    static NSAttributedString* red(NSString* text) {
        NSDictionary* look = [NSDictionary dictionaryWithObject:[NSColor redColor]
                                                         forKey:NSForegroundColorAttributeName];
        return [[[NSAttributedString alloc] initWithString:text attributes:look] autorelease];
    }
    NSAutoreleasePool* pool;
    NSMenu* root;
    NSMenuItem* item;
};

}  // namespace

TEST_F(MenuItem, AnAttributedTitleIsKeptWithItsColour) {
    EXPECT_EQ([item attributedTitle], nil);
    [item setAttributedTitle:red(@"red")];
    EXPECT_TRUE([[item attributedTitle] isEqual:red(@"red")]);
    EXPECT_STREQ([[item title] UTF8String], "red");
    [item setAttributedTitle:nil];
    EXPECT_EQ([item attributedTitle], nil);
    EXPECT_STREQ([[item title] UTF8String], "red");
}

TEST_F(MenuItem, AViewIsRetainedUntilItIsReplacedOrTheItemDies) {
    NSView* view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 32, 32)];
    NSMenuItem* other = [NSMenuItem new];
    [item setView:view];
    [other setView:view];
    EXPECT_EQ([item view], view);
    EXPECT_EQ([view retainCount], 3u);
    [item setView:nil];
    EXPECT_EQ([item view], nil);
    EXPECT_EQ([view retainCount], 2u);
    [other release];
    EXPECT_EQ([view retainCount], 1u);
    [view release];
}

TEST_F(MenuItem, ANewItemAtTheAddressOfADeadOneHasNothingOfIt) {
    for (int i = 0; i < 50; i++) {
        NSMenuItem* fresh = [NSMenuItem new];
        EXPECT_EQ([fresh view], nil);
        EXPECT_EQ([fresh attributedTitle], nil);
        [fresh setAttributedTitle:red(@"x")];
        [fresh release];
    }
}

TEST_F(MenuItem, AnItemIsToldOfTheValueThatItIsBoundToUntilItDies) {
    NSMutableDictionary* model = [NSMutableDictionary dictionaryWithObject:@"first" forKey:@"name"];
    [BoundItem exposeBinding:@"title"];
    NSMenuItem* bound = [BoundItem new];
    [bound bind:@"title" toObject:model withKeyPath:@"name" options:nil];
    EXPECT_STREQ([[bound title] UTF8String], "first");
    [model setValue:@"second" forKey:@"name"];
    EXPECT_STREQ([[bound title] UTF8String], "second");
    const int told = told_values;
    [bound release];
    [model setValue:@"third" forKey:@"name"];
    EXPECT_EQ(told_values, told);
}

TEST_F(MenuItem, TitleAndViewDoNotDisturbEachOther) {
    NSView* view = [[[NSView alloc] initWithFrame:NSZeroRect] autorelease];
    [item setAttributedTitle:red(@"a")];
    [item setView:view];
    [item setAttributedTitle:red(@"b")];
    EXPECT_EQ([item view], view);
    [item setView:nil];
    EXPECT_TRUE([[item attributedTitle] isEqual:red(@"b")]);
}

TEST_F(MenuItem, ACopyHasTheAttributedTitle) {
    [item setAttributedTitle:red(@"red")];
    NSMenuItem* copy = [[item copy] autorelease];
    [item setAttributedTitle:nil];
    EXPECT_TRUE([[copy attributedTitle] isEqual:red(@"red")]);
}

TEST_F(MenuItem, ASubmenuLeavesTargetActionAndBothTitlesAlone) {
    [item setTarget:root];
    for (const bool add_first : {true, false}) {
        if (add_first) [root addItem:item];
        [item setSubmenu:submenu()];
        if (!add_first) [root addItem:item];
        EXPECT_EQ([item target], root);
        EXPECT_TRUE(sel_isEqual([item action], @selector(copy:)));
        EXPECT_STREQ([[item title] UTF8String], "item");
        EXPECT_STREQ([[[item submenu] title] UTF8String], "own title");
        EXPECT_EQ([[item submenu] supermenu], root);
        [item setSubmenu:nil];
        EXPECT_TRUE(sel_isEqual([item action], @selector(copy:)));
        [root removeAllItems];
        EXPECT_EQ([item target], root);
    }
}

TEST_F(MenuItem, AParentWithoutAnActionIsEnabledByItsSubmenu) {
    [item setAction:NULL];
    [item setSubmenu:submenu()];
    [root addItem:item];
    EXPECT_TRUE(sel_isEqual([item action], @selector(submenuAction:)));
    EXPECT_EQ([item target], root);
    [[item submenu] addItemWithTitle:@"x" action:NULL keyEquivalent:@""];
    [root update];
    EXPECT_TRUE([item isEnabled]);
    [item setSubmenu:nil];
    EXPECT_EQ([item action], (SEL)NULL);
    EXPECT_EQ([item target], nil);
}

TEST_F(MenuItem, ASubmenuOfAnotherItemIsRefused) {
    [root addItem:item];
    NSMenu* menu = submenu();
    [item setSubmenu:menu];
    NSMenuItem* other = [[NSMenuItem new] autorelease];
    bool raised = false;
    @try {
        [other setSubmenu:menu];
    } @catch (NSException* exception) {
        raised = true;
    }
    EXPECT_TRUE(raised);
    [item setSubmenu:nil];
    [other setSubmenu:menu];
    EXPECT_EQ([other submenu], menu);
}

TEST_F(MenuItem, TheParentItemIsTheOneWithTheSubmenu) {
    EXPECT_EQ([item parentItem], nil);
    NSMenuItem* decoy = [[NSMenuItem new] autorelease];
    [decoy setSubmenu:submenu()];
    NSMenuItem* child = [[NSMenuItem new] autorelease];
    [root addItem:decoy];
    [root addItem:item];
    EXPECT_EQ([item parentItem], nil);
    [item setSubmenu:submenu()];
    [[item submenu] addItem:child];
    EXPECT_EQ([child parentItem], item);
}

TEST_F(MenuItem, AnAlternateKeepsItsMask) {
    [item setAlternate:YES];
    [item setKeyEquivalentModifierMask:NSShiftKeyMask];
    [root addItem:item];
    EXPECT_TRUE([item isAlternate]);
    EXPECT_EQ([item keyEquivalentModifierMask], (NSUInteger)NSShiftKeyMask);
}

TEST_F(MenuItem, TheHighlightIsTheOneOfTheOpenSession) {
    [root setAutoenablesItems:NO];
    [root addItem:item];
    EXPECT_EQ([root highlightedItem], nil);
    MenuSession* session = [[MenuSession alloc] initWithMenu:root];
    [session open];
    [session highlightItem:item inMenu:root];
    EXPECT_EQ([root highlightedItem], item);
    EXPECT_TRUE([item isHighlighted]);
    [session close];
    EXPECT_FALSE([item isHighlighted]);
    [session release];
}

TEST_F(MenuItem, CancellingAnOpenSubmenuEndsTheWholeSession) {
    [root setAutoenablesItems:NO];
    [item setSubmenu:submenu()];
    [root addItem:item];
    [root cancelTracking];
    MenuSession* session = [[MenuSession alloc] initWithMenu:root];
    [session open];
    [session openSubmenuOfItem:item];
    EXPECT_FALSE([session isEnding]);
    [[item submenu] cancelTrackingWithoutAnimation];
    EXPECT_TRUE([session isEnding]);
    EXPECT_EQ([session pickedItem], nil);
    [session close];
    [session release];
}

TEST_F(MenuItem, KeysFromTheUsersDefaultsAreFoundAfterTheyChange) {
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    NSMenuItem* before = [[[NSMenuItem alloc] initWithTitle:@"Frobnicate"
                                                     action:NULL
                                              keyEquivalent:@""] autorelease];
    EXPECT_STREQ([[before keyEquivalent] UTF8String], "");
    [defaults setObject:[NSDictionary dictionaryWithObject:@"@k" forKey:@"Frobnicate"]
                 forKey:@"NSUserKeyEquivalents"];
    NSMenuItem* after = [[[NSMenuItem alloc] initWithTitle:@"Frobnicate"
                                                    action:NULL
                                             keyEquivalent:@""] autorelease];
    EXPECT_STREQ([[after keyEquivalent] UTF8String], "k");
    [defaults removeObjectForKey:@"NSUserKeyEquivalents"];
}

TEST_F(MenuItem, StateImagesAreTheUsualOnesUnlessOthersAreSet) {
    EXPECT_EQ([item onStateImage], [NSImage imageNamed:@"NSMenuCheckmark"]);
    EXPECT_EQ([item mixedStateImage], [NSImage imageNamed:@"NSMenuMixedState"]);
    EXPECT_NE([item onStateImage], nil);
    NSImage* other = [[[NSImage alloc] initWithSize:NSMakeSize(9, 9)] autorelease];
    [item setOnStateImage:other];
    [item setMixedStateImage:nil];
    EXPECT_EQ([item onStateImage], other);
    EXPECT_EQ([item mixedStateImage], nil);
    NSMenuItem* copy = [[item copy] autorelease];
    EXPECT_EQ([[copy onStateImage] size].width, 9);
    EXPECT_EQ([copy mixedStateImage], nil);
    [item setOnStateImage:nil];
    EXPECT_EQ([item onStateImage], nil);
}

TEST_F(MenuItem, AnArchiveHoldsTheStateImages) {
    [item setAction:NULL];
    NSData* archive = [NSArchiver archivedDataWithRootObject:item];
    NSMenuItem* read = [NSUnarchiver unarchiveObjectWithData:archive];
    EXPECT_STREQ([[read title] UTF8String], "item");
    EXPECT_EQ([read onStateImage], [item onStateImage]);
    EXPECT_EQ([read mixedStateImage], [item mixedStateImage]);
}

static int named_lookups;
static IMP real_image_named;
static id count_lookup(id self, SEL selector, NSString* name) {
    named_lookups++;
    return reinterpret_cast<id (*)(id, SEL, NSString*)>(real_image_named)(self, selector, name);
}

TEST_F(MenuItem, AnItemOrASeparatorLoadsNoPicture) {
    Method method = class_getClassMethod([NSImage class], @selector(imageNamed:));
    real_image_named = method_setImplementation(method, reinterpret_cast<IMP>(count_lookup));
    named_lookups = 0;
    for (int i = 0; i < 10; i++) {
        [root addItem:static_cast<NSMenuItem*>([NSMenuItem separatorItem])];
        [root addItemWithTitle:@"a" action:@selector(copy:) keyEquivalent:@""];
    }
    EXPECT_EQ(named_lookups, 0);
    [[root itemAtIndex:0] onStateImage];
    EXPECT_GT(named_lookups, 0);
    method_setImplementation(method, real_image_named);
}

TEST_F(MenuItem, ANamedImageIsFoundWithoutAskingImageMagick) {
    EXPECT_NE([NSImage imageNamed:@"NSMenuCheckmark"], nil);
    EXPECT_NE([NSImage imageNamed:@"NSMenuMixedState"], nil);
    std::ifstream maps("/proc/self/maps");
    const std::string mapped{std::istreambuf_iterator<char>(maps), {}};
    EXPECT_NE(mapped.find("libgnustep-gui"), std::string::npos);
    EXPECT_EQ(mapped.find("/coders/"), std::string::npos) << "a module of ImageMagick is loaded";
    EXPECT_TRUE([[NSImage imageUnfilteredFileTypes] containsObject:@"webp"])
        << "asked for, it tells";
}

TEST_F(MenuItem, ItemsOfOneTitleKeepOneString) {
    NSMutableString* title = [NSMutableString stringWithString:@"a title of some length"];
    [item setTitle:title];
    NSMenuItem* other = [[NSMenuItem alloc] initWithTitle:title action:NULL keyEquivalent:@""];
    EXPECT_EQ([other title], [item title]);
    [title appendString:@", changed"];
    EXPECT_STREQ([[item title] UTF8String], "a title of some length");
    [other setTitle:title];
    EXPECT_STREQ([[other title] UTF8String], "a title of some length, changed");
    EXPECT_STREQ([[item title] UTF8String], "a title of some length");
    [other setTitle:nil];
    EXPECT_STREQ([[other title] UTF8String], "");
    NSString* longer = [@"" stringByPaddingToLength:5000 withString:@"ab" startingAtIndex:0];
    [other setTitle:longer];
    EXPECT_TRUE([[other title] isEqualToString:longer]);
    [other release];
}
