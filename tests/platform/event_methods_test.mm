#include <AppKit/AppKit.h>
#include <host/modifier_keys.h>
#include <gtest/gtest.h>

#include <stdlib.h>

#include <string>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

// A keyboard and mouse that the test controls; everything is released at the end.
class EventMethods : public testing::Test {
  protected:
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        display = XOpenDisplay(nullptr);
        ASSERT_NE(display, nullptr);
    }
    void TearDown() override {
        if (display) XCloseDisplay(display);
        for (NSString *name in
             [NSArray arrayWithObjects:@"GSFirstAlternateKey", @"GSFirstCommandKey", nil]) {
            [[NSUserDefaults standardUserDefaults] removeObjectForKey:name];
        }
        set_held_modifier_flags(0);
        [pool release];
    }
    void key(KeySym symbol, bool down) {
        XTestFakeKeyEvent(display, XKeysymToKeycode(display, symbol), down, CurrentTime);
        XSync(display, False);
    }
    void button(unsigned number, bool down) {
        XTestFakeButtonEvent(display, number, down, CurrentTime);
        XSync(display, False);
    }
    NSUInteger flags_with(KeySym symbol) {
        key(symbol, true);
        const NSUInteger flags = [NSEvent modifierFlags];
        key(symbol, false);
        return flags;
    }
    NSAutoreleasePool* pool;
    Display* display = nullptr;
};

}  // namespace

TEST_F(EventMethods, EachModifierKeyIsSeenWhileItIsDownOnly) {
    EXPECT_EQ([NSEvent modifierFlags], 0u);
    EXPECT_EQ(flags_with(XK_Shift_L), (NSUInteger)NSShiftKeyMask);
    EXPECT_EQ(flags_with(XK_Shift_R), (NSUInteger)NSShiftKeyMask);
    EXPECT_EQ(flags_with(XK_Control_L), (NSUInteger)NSControlKeyMask);
    EXPECT_EQ(flags_with(XK_Alt_L), (NSUInteger)NSAlternateKeyMask);
    EXPECT_EQ(flags_with(XK_Alt_R), (NSUInteger)NSAlternateKeyMask);
    EXPECT_EQ(flags_with(XK_Super_L), (NSUInteger)NSCommandKeyMask);
    EXPECT_EQ(flags_with(XK_Super_R), (NSUInteger)NSCommandKeyMask);
    EXPECT_EQ(flags_with(XK_a), 0u);
    EXPECT_EQ([NSEvent modifierFlags], 0u);
}

TEST_F(EventMethods, TheMappingIsTheUsersDefault) {
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    [defaults setObject:@"Alt_L" forKey:@"GSFirstAlternateKey"];
    [defaults setObject:@"Super_L" forKey:@"GSFirstCommandKey"];
    EXPECT_EQ(flags_with(XK_Alt_L), (NSUInteger)NSAlternateKeyMask);
    EXPECT_EQ(flags_with(XK_Super_L), (NSUInteger)NSCommandKeyMask);
    [defaults setObject:@"NoSymbol" forKey:@"GSFirstAlternateKey"];
    EXPECT_EQ(flags_with(XK_Alt_L), 0u);
    [defaults setObject:@"Alt_R" forKey:@"GSFirstCommandKey"];
    EXPECT_EQ(flags_with(XK_Alt_R), (NSUInteger)NSCommandKeyMask) << "and no Option besides";
}

// In XKB's own layouts the key right of the space bar switches to the third level there.
TEST_F(EventMethods, AltGrIsOptionInLayoutsThatHaveIt) {
    const unsigned right_alt = XKeysymToKeycode(display, XK_Alt_R);
    ASSERT_NE(right_alt, 0u);
    EXPECT_EQ([NSEvent modifierFlags], 0u);
    for (const char* layout : {"de", "fr", "us", "us,de"}) {
        ASSERT_EQ(system((std::string("setxkbmap ") + layout).c_str()), 0);
        for (const unsigned code : {right_alt, (unsigned)XKeysymToKeycode(display, XK_Alt_L)}) {
            XTestFakeKeyEvent(display, code, true, CurrentTime);
            XSync(display, False);
            EXPECT_EQ([NSEvent modifierFlags], (NSUInteger)NSAlternateKeyMask) << layout;
            XTestFakeKeyEvent(display, code, false, CurrentTime);
            XSync(display, False);
        }
    }
    system("setxkbmap us");
}

TEST_F(EventMethods, HeldFlagsAddToTheKeyboard) {
    set_held_modifier_flags(NSAlternateKeyMask);
    EXPECT_EQ(held_modifier_flags(), (NSUInteger)NSAlternateKeyMask);
    EXPECT_EQ(flags_with(XK_Shift_L), (NSUInteger)(NSAlternateKeyMask | NSShiftKeyMask));
    set_held_modifier_flags(0);
    EXPECT_EQ([NSEvent modifierFlags], 0u);
}

TEST_F(EventMethods, ButtonsAreCountedAsOnTheMac) {
    EXPECT_EQ([NSEvent pressedMouseButtons], 0u);
    const struct {
        unsigned x_button;
        NSUInteger bit;
    } rows[] = {{1, 1}, {2, 4}, {3, 2}};
    for (const auto& row : rows) {
        button(row.x_button, true);
        EXPECT_EQ([NSEvent pressedMouseButtons], row.bit);
        button(row.x_button, false);
    }
    EXPECT_EQ([NSEvent pressedMouseButtons], 0u);
}

TEST_F(EventMethods, TheDoubleClickIntervalIsAFractionOfASecond) {
    EXPECT_GT([NSEvent doubleClickInterval], 0.1);
    EXPECT_LT([NSEvent doubleClickInterval], 1.0);
}
