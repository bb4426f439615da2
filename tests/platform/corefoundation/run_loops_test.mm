#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "corefoundation/common_modes.h"

TEST(RunLoops, TheDefaultModeIsCommonFromTheStart) {
    EXPECT_TRUE([[common_modes() objectAtIndex:0] isEqual:NSDefaultRunLoopMode]);
}

TEST(RunLoops, AnAddedModeIsCommonOnce) {
    const NSUInteger before = [common_modes() count];
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), CFSTR("TestMode"));
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), CFSTR("TestMode"));
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), nullptr);
    EXPECT_EQ([common_modes() count], before + 1);
    EXPECT_TRUE([common_modes() containsObject:@"TestMode"]);
}

TEST(RunLoops, TheModesHaveFoundationsNames) {
    EXPECT_TRUE([(NSString*)kCFRunLoopDefaultMode isEqual:NSDefaultRunLoopMode]);
    EXPECT_TRUE([(NSString*)kCFRunLoopCommonModes isEqual:NSRunLoopCommonModes]);
    EXPECT_EQ(CFRunLoopGetCurrent(), (CFRunLoopRef)[NSRunLoop currentRunLoop]);
}
