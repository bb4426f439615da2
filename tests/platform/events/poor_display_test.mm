// A display without the extensions, and one that goes away.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>

#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/app.h"
#include "support/x_filter.h"
#include "x11/file_offer.h"

// Included last, because its macros break other headers.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace {

CGEventRef pass(CGEventTapProxy, CGEventType, CGEventRef event, void*) { return event; }

CFMachPortRef session_tap() {
    return CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap, kCGEventTapOptionListenOnly,
                            CGEventMaskBit(kCGEventLeftMouseDown), pass, nullptr);
}

CFMachPortRef process_tap() {
    ProcessSerialNumber process;
    GetCurrentProcess(&process);
    return CGEventTapCreateForPSN(&process, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                                  CGEventMaskBit(kCGEventLeftMouseDown), pass, nullptr);
}

// The exit status of a separate process that runs `act`, whose result becomes the status.
int in_own_process(int (*act)()) {
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);  // ends an endless loop
        _exit(act());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

constexpr int as_expected = 7;

// No process has this identifier; a window may claim it.
constexpr unsigned long claimed_process = 4194305;

// The process in front while the keyboard belongs to a window that claims to be another process's.
UInt32 process_in_front_of_a_lie() {
    Display* display = XOpenDisplay(nullptr);
    const Window window =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 10, 10, 100, 100, 0, 0, 0);
    XChangeProperty(display, window, XInternAtom(display, "_NET_WM_PID", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&claimed_process), 1);
    XMapWindow(display, window);
    XSetInputFocus(display, window, RevertToPointerRoot, CurrentTime);
    XSync(display, False);
    ProcessSerialNumber front = {};
    const bool found = GetFrontProcess(&front) == noErr;
    XCloseDisplay(display);
    return found ? front.lowLongOfPSN : 0;
}

}  // namespace

TEST(PoorDisplay, WithoutXInputThereIsNoSessionTapAndTheRestWorks) {
    const int status = in_own_process([] {
        const test::XFilter filter({"XInputExtension"});
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        test::start_application();
        const bool right = !session_tap() && process_tap() &&
                           CGPostMouseEvent(CGPointMake(30, 40), true, 1, 0) == kCGErrorSuccess &&
                           [NSEvent mouseLocation].x == 30 &&
                           SetThemeCursor(kThemeArrowCursor) == noErr;
        [pool release];
        return right ? as_expected : 1;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), as_expected);
}

TEST(PoorDisplay, WithoutXTestNothingIsPostedAndTheRestWorks) {
    const int status = in_own_process([] {
        const test::XFilter filter({"XTEST"});
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        test::start_application();
        const bool right =
            session_tap() && process_tap() &&
            CGPostMouseEvent(CGPointMake(30, 40), true, 1, 0) == kCGErrorCannotComplete &&
            [NSEvent pressedMouseButtons] == 0;
        [pool release];
        return right ? as_expected : 1;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), as_expected);
}

TEST(PoorDisplay, WhereTheServerCannotTellProcessesAWindowIsTakenAtItsWord) {
    const int status = in_own_process([] {
        const test::XFilter filter({"X-Resource"});
        return process_in_front_of_a_lie() == claimed_process ? as_expected : 1;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), as_expected);
    const int status_elsewhere = in_own_process([] {
        return process_in_front_of_a_lie() == static_cast<UInt32>(getpid()) ? as_expected : 1;
    });
    ASSERT_TRUE(WIFEXITED(status_elsewhere));
    EXPECT_EQ(WEXITSTATUS(status_elsewhere), as_expected);
}

// Losing the toolkit's own connection would end the process, so that one stays.
TEST(PoorDisplay, ADisplayThatGoesAwayLeavesAnswersWithoutOne) {
    const int status = in_own_process([] {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        test::start_application();
        test::XFilter filter;
        CFMachPortRef tap = session_tap();
        if (!tap) return 1;
        CFRunLoopSourceRef source = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
        if ([NSEvent pressedMouseButtons] != 0 || CGPostMouseEvent({1, 1}, true, 1, 0)) return 2;
        if (SetThemeCursor(kThemeArrowCursor) != noErr || !FileOffer::shared()) return 3;
        filter.take_display_away();
        for (int i = 0; i < 500 && CFMachPortIsValid(tap); i++) {
            [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
        }
        if (CFMachPortIsValid(tap)) return 4;
        if ([NSEvent pressedMouseButtons] != 0 || [NSEvent modifierFlags] != 0) return 5;
        if (CGPostMouseEvent({1, 1}, true, 1, 0) != kCGErrorCannotComplete) return 6;
        if (SetThemeCursor(kThemeArrowCursor) == noErr || FileOffer::shared()) return 8;
        if (session_tap()) return 9;
        [pool release];
        return as_expected;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), as_expected);
}

// Like every X program, the process ends by itself, not by a signal or the alarm.
TEST(PoorDisplay, AnApplicationWhoseDisplayGoesAwayEnds) {
    const int status = in_own_process([] {
        test::XFilter filter;
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        test::start_application();
        CFMachPortRef tap = session_tap();
        CFRunLoopSourceRef source = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
        filter.take_display_away();
        [NSApp run];
        [pool release];
        return as_expected;
    });
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
}
