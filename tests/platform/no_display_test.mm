#include <AppKit/AppKit.h>
#include <host/modifier_keys.h>
#include <gtest/gtest.h>

TEST(WithoutADisplay, OnlyHeldModifiersAreKnown) {
    EXPECT_EQ([NSEvent modifierFlags], 0u);
    EXPECT_EQ([NSEvent pressedMouseButtons], 0u);
    set_held_modifier_flags(NSShiftKeyMask);
    EXPECT_EQ([NSEvent modifierFlags], (NSUInteger)NSShiftKeyMask);
    set_held_modifier_flags(0);
}

TEST(WithoutADisplay, MenusCanBeBuiltWithoutAnApplication) {
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@"menu"];
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:@"item" action:NULL keyEquivalent:@""];
    [item setSubmenu:[[[NSMenu alloc] initWithTitle:@"sub"] autorelease]];
    [menu addItem:item];
    EXPECT_EQ([[item submenu] supermenu], menu);
    [item release];
    [menu release];
}
