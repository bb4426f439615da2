#include "service/giving_way.h"

#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <host/menu_tracking.h>

#include "support/app.h"

@interface GivingWayTarget : NSObject
- (void)act:(id)sender;
@end
@implementation GivingWayTarget
- (void)act:(id)sender {
    (void)sender;
}
@end

namespace {

struct GivingWay : testing::Test {
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        test::start_application();
        menu = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
        item = (NSMenuItem*)[menu addItemWithTitle:@"item"
                                            action:@selector(act:)
                                     keyEquivalent:@""];
        [item setTarget:[[GivingWayTarget new] autorelease]];
        session = [[[MenuSession alloc] initWithMenu:menu] autorelease];
    }
    void TearDown() override {
        [session close];
        [pool release];
    }

    NSAutoreleasePool* pool = nil;
    NSMenu* menu = nil;
    NSMenuItem* item = nil;
    MenuSession* session = nil;
};

TEST_F(GivingWay, AnOpenMenuGivesWay) {
    EXPECT_FALSE(open_menu_gives_way());
    [session open];
    EXPECT_TRUE(open_menu_gives_way());
    [session close];
    EXPECT_FALSE(open_menu_gives_way());
}

TEST_F(GivingWay, AMenuThatHasItsPickDoesNot) {
    [session open];
    [session pickItem:item];
    ASSERT_EQ([session pickedItem], item);
    EXPECT_FALSE(open_menu_gives_way());
}

TEST_F(GivingWay, AMenuBehindAPanelDoesNot) {
    [session open];
    NSPanel* panel = [[[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, 100, 100)
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:YES] autorelease];
    const NSModalSession modal = [NSApp beginModalSessionForWindow:panel];
    EXPECT_FALSE(open_menu_gives_way());
    [NSApp endModalSession:modal];
    [panel orderOut:nil];
    EXPECT_TRUE(open_menu_gives_way());
}

}  // namespace
