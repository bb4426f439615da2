// A toolkit that fails while it starts. It has set its own handler by then, which shows a panel.
#include <gtest/gtest.h>
#include <unistd.h>

#include <AppKit/AppKit.h>

#include <objc/runtime.h>

#include "popup/application.h"

namespace {

constexpr int shown_panel = 42;

void show_panel(NSException*) { _exit(shown_panel); }

id start_badly(id, SEL) {
    NSSetUncaughtExceptionHandler(show_panel);
    [NSException raise:@"TestException" format:@"no image"];
    return nil;
}

void start_with_bad_toolkit() {
    const Method start = class_getClassMethod([NSApplication class], @selector(sharedApplication));
    method_setImplementation(start, (IMP)start_badly);
    start_application();
    _exit(0);
}

}  // namespace

TEST(ApplicationStart, AnExceptionOfTheToolkitIsToldOfAndEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(start_with_bad_toolkit(), testing::ExitedWithCode(1),
                "internal error: TestException: no image");
}
