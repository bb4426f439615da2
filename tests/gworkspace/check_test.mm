// The bundle in a program that is not GWorkspace.
#include <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <stdio.h>

#include <chrono>

#include "support/temp_folder.h"

TEST(Check, OutsideGWorkspaceNothingElseIsLoaded) {
    [NSUserDefaults standardUserDefaults];  // what every program has used before
    [NSBundle bundleWithPath:@"/usr"];
    const auto start = std::chrono::steady_clock::now();
    NSBundle* bundle = [NSBundle bundleWithPath:@(DELVIO_GWORKSPACE_BUNDLE)];
    const auto found = std::chrono::steady_clock::now();
    Class principal = [bundle principalClass];
    const auto loaded = std::chrono::steady_clock::now();
    id made = [[[principal alloc] init] autorelease];
    const auto checked = std::chrono::steady_clock::now();
    ASSERT_NE(made, nil);
    const std::string maps = test::read_file("/proc/self/maps");
    EXPECT_NE(maps.find("DelvioGWorkspace.bundle"), std::string::npos);
    EXPECT_EQ(maps.find("libdelvio-"), std::string::npos);
    const auto microseconds = [](auto from, auto to) {
        return static_cast<long>(
            std::chrono::duration_cast<std::chrono::microseconds>(to - from).count());
    };
    printf("found in %ld us, loaded in %ld, checked in %ld\n", microseconds(start, found),
           microseconds(found, loaded), microseconds(loaded, checked));
}
