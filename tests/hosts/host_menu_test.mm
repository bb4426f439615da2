// The menu that the command makes for its files.
#include "popup/host_menu.h"

#include <gtest/gtest.h>

#include "support/app.h"
#include "support/turn.h"

namespace {

int freed;

}  // namespace

@interface CountedHostMenu : HostMenu
@end

@implementation CountedHostMenu
- (void)dealloc {
    ++freed;
    [super dealloc];
}
@end

namespace {

TEST(HostMenuMemory, AFilledMenuIsFreedWithItsItems) {
    freed = 0;
    test::in_one_turn([] {
        test::start_application();
        CountedHostMenu* host = [[CountedHostMenu alloc] initWithFiles:{"/tmp"} forPeople:YES];
        NSMenu* menu = [host menu];
        [[menu delegate] menuNeedsUpdate:menu];
        EXPECT_GT([menu numberOfItems], 4);
        for (NSMenuItem* item in [menu itemArray]) EXPECT_TRUE([HostMenu madeItem:item]);
        NSMenuItem* other = [[[NSMenuItem alloc] initWithTitle:@"other"
                                                        action:nullptr
                                                 keyEquivalent:@""] autorelease];
        EXPECT_FALSE([HostMenu madeItem:other]);
        [host release];
    });
    EXPECT_EQ(freed, 1);
}

}  // namespace
