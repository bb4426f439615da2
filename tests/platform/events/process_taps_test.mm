// Taps in the event path of this process, with a real pointer.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <CoreGraphics/CGEvent.h>
#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include <unistd.h>

#include "platform/events/pointer_window.h"
#include "platform/menu_script.h"
#include "platform/recording_delegate.h"
#include "support/app.h"
#include "support/steps.h"

namespace {

using TapAnswer = std::function<CGEventRef(CGEventType, CGEventRef)>;

constexpr CGEventMask all_buttons_and_moves = CGEventMaskBit(kCGEventLeftMouseDown) |
                                              CGEventMaskBit(kCGEventLeftMouseUp) |
                                              CGEventMaskBit(kCGEventMouseMoved);

std::string name_of(CGEventType type) {
    switch (type) {
        case kCGEventLeftMouseDown:
            return "down";
        case kCGEventLeftMouseUp:
            return "up";
        case kCGEventMouseMoved:
            return "moved";
        case kCGEventTapDisabledByTimeout:
            return "too late";
        default:
            return "?";
    }
}

// A tap of this process; it is in the run loop while the object lives.
class Tap {
  public:
    explicit Tap(CGEventMask mask, CGEventTapOptions options = kCGEventTapOptionDefault,
                 CGEventTapPlacement place = kCGHeadInsertEventTap, bool served = true) {
        ProcessSerialNumber process;
        GetCurrentProcess(&process);
        port_ = CGEventTapCreateForPSN(&process, place, options, mask, callback, this);
        if (served) serve();
    }
    ~Tap() {
        CFMachPortInvalidate(port_);
        CFRelease(port_);
    }
    void serve() {
        CFRunLoopSourceRef source = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
        CFRelease(source);
    }
    CFMachPortRef port() const { return port_; }

    TapAnswer answer = [](CGEventType, CGEventRef event) { return event; };
    std::string log;
    CGPoint last = {};

  private:
    static CGEventRef callback(CGEventTapProxy, CGEventType type, CGEventRef event, void* self) {
        Tap* tap = static_cast<Tap*>(self);
        // Several moves in a row count as one.
        if (type != kCGEventMouseMoved || !tap->log.ends_with("moved")) {
            tap->log += (tap->log.empty() ? "" : " ") + name_of(type);
        }
        tap->last = CGEventGetLocation(event);
        return tap->answer(type, event);
    }
    CFMachPortRef port_;
};

CGEventRef swallow_press(CGEventType type, CGEventRef event) {
    return type == kCGEventLeftMouseDown ? nullptr : event;
}

class ProcessTaps : public testing::Test {
  protected:
    ProcessTaps() : pool_([NSAutoreleasePool new]) {
        test::start_application();
        CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
        window_ = [PointerWindow new];
    }
    ~ProcessTaps() override {
        script_.input.let_go();
        [window_ release];
        [pool_ release];
    }
    // Clicks at a point, then presses the right button at another; that press shows that all events
    // have arrived.
    std::string click_on_window() {
        [window_ takeLog];
        test::Steps steps;
        steps.when(
            "the window", [] { return true; },
            [this] {
                script_.input.move(150, 150);
                script_.input.click(1);
                script_.input.click(3);
            });
        steps.when("the end",
                   [this] { return [window_ log].find("right up") != std::string::npos; });
        steps.run();
        const std::string log = [window_ takeLog];
        return log.substr(0, log.find("right down"));
    }

    NSAutoreleasePool* pool_;
    PointerWindow* window_;
    MenuScript script_;
};

constexpr char whole_click[] = "down 150 150, up 150 150, ";

}  // namespace

TEST_F(ProcessTaps, SeeEachPressAndReleaseThatTheApplicationGets) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventLeftMouseUp));
    EXPECT_EQ(click_on_window(), whole_click);
    EXPECT_EQ(tap.log, "down up");
    EXPECT_EQ(tap.last.x, 150);
    EXPECT_EQ(tap.last.y, 150);
}

TEST_F(ProcessTaps, SeeOnlyWhatTheyAskFor) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseUp));
    EXPECT_EQ(click_on_window(), whole_click);
    EXPECT_EQ(tap.log, "up");
}

TEST_F(ProcessTaps, SwallowAnEventByReturningNone) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    tap.answer = swallow_press;
    // GNUstep's window sends a release to the view that got the press.
    EXPECT_EQ(click_on_window().find("down"), std::string::npos);
    EXPECT_EQ(tap.log, "down");
}

TEST_F(ProcessTaps, SwallowAnEventByOneThatSaysNothing) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    tap.answer = [](CGEventType, CGEventRef) { return CGEventCreate(nullptr); };
    EXPECT_EQ(click_on_window().find("down"), std::string::npos);
}

TEST_F(ProcessTaps, ReplaceAnEventByAnother) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    NSEvent* got = nil;
    tap.answer = [](CGEventType, CGEventRef event) {
        CGPoint at = CGEventGetLocation(event);
        at.x += 7;
        return CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDown, at, kCGMouseButtonLeft);
    };
    test::Steps steps;
    steps.when(
        "the window", [] { return true; },
        [this] {
            script_.input.move(150, 150);
            script_.input.click(1);
        });
    steps.when("the press", [&] {
        NSEvent* event = [NSApp nextEventMatchingMask:NSLeftMouseDownMask
                                            untilDate:[NSDate distantPast]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        if (event && !got) got = [event retain];
        return got != nil;
    });
    steps.run_beside([&] {
        while (!got) {
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
        }
    });
    EXPECT_EQ([got locationInWindow].x, 157);
    EXPECT_EQ([got window], nil);
    [got release];
}

TEST_F(ProcessTaps, TheFirstSeesFirstAndMayHideFromTheOthers) {
    Tap second(CGEventMaskBit(kCGEventLeftMouseDown));
    Tap third(CGEventMaskBit(kCGEventLeftMouseDown), kCGEventTapOptionDefault,
              kCGTailAppendEventTap);
    Tap first(CGEventMaskBit(kCGEventLeftMouseDown));
    second.answer = swallow_press;
    click_on_window();
    EXPECT_EQ(first.log, "down");
    EXPECT_EQ(second.log, "down");
    EXPECT_EQ(third.log, "");
}

TEST_F(ProcessTaps, AListenerChangesNothing) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown), kCGEventTapOptionListenOnly);
    tap.answer = swallow_press;
    EXPECT_EQ(click_on_window(), whole_click);
    EXPECT_EQ(tap.log, "down");
}

TEST_F(ProcessTaps, ADisabledOneSeesNothing) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    EXPECT_TRUE(CGEventTapIsEnabled(tap.port()));
    CGEventTapEnable(tap.port(), false);
    EXPECT_FALSE(CGEventTapIsEnabled(tap.port()));
    click_on_window();
    EXPECT_EQ(tap.log, "");
    CGEventTapEnable(tap.port(), true);
    click_on_window();
    EXPECT_EQ(tap.log, "down");
}

TEST_F(ProcessTaps, OneOutsideTheRunLoopSeesNothing) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown), kCGEventTapOptionDefault, kCGHeadInsertEventTap,
            false);
    click_on_window();
    EXPECT_EQ(tap.log, "");
    tap.serve();
    click_on_window();
    EXPECT_EQ(tap.log, "down");
}

TEST_F(ProcessTaps, AnInvalidOneSeesNothing) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    EXPECT_TRUE(CFMachPortIsValid(tap.port()));
    CFMachPortInvalidate(tap.port());
    EXPECT_FALSE(CFMachPortIsValid(tap.port()));
    EXPECT_FALSE(CGEventTapIsEnabled(tap.port()));
    EXPECT_EQ(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap.port(), 0), nullptr);
    click_on_window();
    EXPECT_EQ(tap.log, "");
}

// Longer than the second that a tap has for its answer.
static void hang() {
    NSDate* start = [NSDate date];
    while ([start timeIntervalSinceNow] > -1.05) usleep(10000);
}

TEST_F(ProcessTaps, OneThatHangsIsDisabledAndTold) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    tap.answer = [](CGEventType type, CGEventRef event) -> CGEventRef {
        if (type == kCGEventTapDisabledByTimeout) return event;
        hang();
        return nullptr;
    };
    EXPECT_EQ(click_on_window(), whole_click) << "its answer came too late";
    EXPECT_EQ(tap.log, "down too late");
    EXPECT_FALSE(CGEventTapIsEnabled(tap.port()));
    click_on_window();
    EXPECT_EQ(tap.log, "down too late");
}

TEST_F(ProcessTaps, OneThatHangsMayEnableItselfAtOnce) {
    Tap tap(CGEventMaskBit(kCGEventLeftMouseDown));
    bool hangs = true;
    tap.answer = [&](CGEventType type, CGEventRef event) {
        if (type == kCGEventTapDisabledByTimeout) {
            CGEventTapEnable(tap.port(), true);
        } else if (std::exchange(hangs, false)) {
            hang();
        }
        return event;
    };
    click_on_window();
    EXPECT_TRUE(CGEventTapIsEnabled(tap.port()));
    click_on_window();
    EXPECT_EQ(tap.log, "down too late down");
}

TEST_F(ProcessTaps, AreRefusedForOtherProcesses) {
    ProcessSerialNumber other = {1, 1};
    const auto callback = [](CGEventTapProxy, CGEventType, CGEventRef event, void*) {
        return event;
    };
    EXPECT_EQ(CGEventTapCreateForPSN(&other, 0, 0, 2, callback, nullptr), nullptr);
    EXPECT_EQ(CGEventTapCreateForPSN(nullptr, 0, 0, 2, callback, nullptr), nullptr);
    ProcessSerialNumber current;
    GetCurrentProcess(&current);
    EXPECT_EQ(CGEventTapCreateForPSN(&current, 0, 0, 0, callback, nullptr), nullptr);
    EXPECT_EQ(CGEventTapCreateForPSN(&current, 0, 0, 2, nullptr, nullptr), nullptr);
}

namespace {

// A tap while a menu tracks.
class TapsInMenus : public ProcessTaps {
  protected:
    TapsInMenus() : tap_(all_buttons_and_moves) {
        recorder_ = [RecordingDelegate new];
        menu_ = [recorder_ menuNamed:@"menu"];
        [recorder_ addItem:@"alpha" toMenu:menu_];
        [recorder_ addItem:@"beta" toMenu:menu_];
        script_.input.move(10, 10);
    }
    ~TapsInMenus() override {
        EXPECT_TRUE(script_.input.pointer_is_free());
        [recorder_ release];
    }
    void on(const char* what, MenuScript::Condition condition, MenuScript::Action action) {
        script_.when(what, std::move(condition), std::move(action));
    }
    void click(NSString* title) {
        const MenuPoint at = row_point(0, title);
        script_.input.move(at.x, at.y);
        script_.input.click(1);
    }
    std::string run() {
        [recorder_ takeLog];
        script_.run(menu_, 700, 200);  // beside the window
        return [recorder_ takeLog];
    }
    bool seen(const char* what) { return tap_.log.find(what) != std::string::npos; }

    Tap tap_;
    RecordingDelegate* recorder_;
    NSMenu* menu_;
};

}  // namespace

TEST_F(TapsInMenus, SeeTheMovesOverTheMenu) {
    MenuPoint row = {};
    on(
        "menu", [] { return level_is_shown(0); },
        [&] {
            row = row_point(0, @"beta");
            script_.input.move(row.x, row.y);
        });
    on(
        "move", [&] { return seen("moved") && tap_.last.x == row.x && tap_.last.y == row.y; },
        [&] { script_.input.key("Escape"); });
    run();
}

TEST_F(TapsInMenus, APressThatPassesPicks) {
    on(
        "menu", [] { return level_is_shown(0); }, [this] { click(@"beta"); });
    EXPECT_NE(run().find("pick beta"), std::string::npos);
    EXPECT_TRUE(seen("down up"));
}

TEST_F(TapsInMenus, APressThatIsSwallowedPicksNothingAndTheMenuStays) {
    tap_.answer = swallow_press;
    on(
        "menu", [] { return level_is_shown(0); }, [this] { click(@"beta"); });
    on(
        "release", [&] { return seen("down up"); }, [this] { script_.input.key("Escape"); });
    const std::string log = run();
    EXPECT_EQ(log.find("pick"), std::string::npos) << log;
    EXPECT_NE(log.find("highlight beta"), std::string::npos) << log;
}

TEST_F(TapsInMenus, TheReleaseOfASwallowedPressEndsNoDragThroughTheMenu) {
    tap_.answer = swallow_press;
    script_.input.move(700, 200);
    script_.input.press(3);
    on(
        "menu", [] { return level_is_shown(0); }, [this] { click(@"beta"); });
    on(
        "release", [&] { return seen("down up"); },
        [this] {
            EXPECT_EQ(MenuRun::current()->state(), state_pressed);
            script_.input.release(3);
        });
    EXPECT_NE(run().find("pick beta"), std::string::npos);
}

TEST_F(TapsInMenus, ASwallowedPressMayCloseTheMenu) {
    tap_.answer = [this](CGEventType type, CGEventRef event) -> CGEventRef {
        if (type != kCGEventLeftMouseDown) return event;
        [menu_ cancelTracking];
        return CGEventCreate(nullptr);
    };
    on(
        "menu", [] { return level_is_shown(0); },
        [this] {
            const MenuPoint at = row_point(0, @"beta");
            script_.input.move(at.x, at.y);
            script_.input.press(1);
        });
    const std::string log = run();
    EXPECT_EQ(log.find("pick"), std::string::npos) << log;
    EXPECT_TRUE([NSEvent pressedMouseButtons] & 1) << "it did not wait for the release";
    script_.input.release(1);
}
