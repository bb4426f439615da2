#include <Foundation/Foundation.h>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    const int status = RUN_ALL_TESTS();
    [pool release];
    return status;
}
