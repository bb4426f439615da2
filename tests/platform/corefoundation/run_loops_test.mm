#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include "corefoundation/common_modes.h"
#include "corefoundation/descriptor_watch.h"

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

// An exception that left the run loop would end the program, or leave its caller's menu open.
TEST(RunLoops, AnExceptionOfAWatchGoesNoFurther) {
    int ends[2], calls = 0;
    ASSERT_EQ(pipe(ends), 0);
    bool has_escaped = false;
    {
        const DescriptorWatch watch(ends[0], [&] {
            char byte;
            calls += read(ends[0], &byte, 1) == 1;
            [NSException raise:@"Test" format:@"an exception of the callback"];
        });
        for (int wanted = 1; wanted <= 2 && !has_escaped; wanted++) {
            ASSERT_EQ(write(ends[1], "x", 1), 1);
            NSDate* const limit = [NSDate dateWithTimeIntervalSinceNow:60];
            @try {
                while (calls<wanted && [limit timeIntervalSinceNow]> 0) {
                    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:limit];
                }
            } @catch (NSException*) {
                has_escaped = true;
            }
        }
    }
    close(ends[0]);
    close(ends[1]);
    EXPECT_FALSE(has_escaped);
    EXPECT_EQ(calls, 2);
}
