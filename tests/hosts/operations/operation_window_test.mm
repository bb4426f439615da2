// The windows of file operations, with a real mouse and keyboard.
#include "operations_ui/operation_window.h"

#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "operations/engine.h"
#include "support/app.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

using namespace operations;

namespace {

// The one window that is shown, or nil.
NSWindow* shown_window() {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window isKindOfClass:[NSPanel class]]) return window;
    }
    return nil;
}

NSButton* button_of(NSView* view, NSString* title) {
    if ([view isKindOfClass:[NSButton class]] && [[(NSButton*)view title] isEqualToString:title]) {
        return (NSButton*)view;
    }
    for (NSView* inner in [view subviews]) {
        if (NSButton* button = button_of(inner, title)) return button;
    }
    return nil;
}

bool shows_text(NSView* view, NSString* text) {
    if ([view isKindOfClass:[NSTextField class]] &&
        [[(NSTextField*)view stringValue] rangeOfString:text].length > 0) {
        return true;
    }
    for (NSView* inner in [view subviews]) {
        if (shows_text(inner, text)) return true;
    }
    return false;
}

// What a user does beside the windows: looked at by a timer, also while a panel is modal.
using Hand = std::function<bool()>;

}  // namespace

@interface WindowHand : NSObject {
  @public
    std::vector<Hand>* _steps;
    size_t _next;
}
@end

@implementation WindowHand
- (void)turn:(NSTimer*)timer {
    if (_next < _steps->size() && (*_steps)[_next]()) _next++;
    if (_next == _steps->size()) [timer invalidate];
}
@end

namespace {

class OperationWindowTest : public testing::Test {
  protected:
    void SetUp() override { test::start_application(); }

    // Each step is tried until it is true, then the next.
    void run(std::vector<Hand> steps) {
        WindowHand* hand = [[WindowHand new] autorelease];
        hand->_steps = &steps;
        NSTimer* timer = [NSTimer timerWithTimeInterval:0.02
                                                 target:hand
                                               selector:@selector(turn:)
                                               userInfo:nil
                                                repeats:YES];
        for (NSString* mode in @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode ]) {
            [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
        }
        RunUntilOperationsEnd();
        [timer invalidate];
        EXPECT_EQ(hand->_next, steps.size()) << "not every step was come to";
    }

    // Clicks the button of the shown window as a mouse does.
    bool click(NSString* title) {
        NSWindow* window = shown_window();
        NSButton* button = window ? button_of([window contentView], title) : nil;
        if (!button) return false;
        const NSRect inside = [button convertRect:[button bounds] toView:nil];
        const NSRect frame = [window frame];
        const CGFloat height = NSMaxY([[NSScreen mainScreen] frame]);
        hand_.move((int)(NSMinX(frame) + NSMidX(inside)),
                   (int)(height - NSMinY(frame) - NSMidY(inside)));
        hand_.click(1);
        return true;
    }

    Report copy(bool replace = false) {
        Request request = {Kind::Copy, sources_, folder_.path("to"), replace};
        Report ended;
        auto engine = MakeEngine(folder_.path("state"));
        engine->carry_out(
            request, MakeWindowObserver(request, [&](const Report& report) { ended = report; }));
        run(steps_);
        return ended;
    }

    void two_taken_names() {
        sources_ = {folder_.file("from/one.txt", "new"), folder_.file("from/two.txt", "new")};
        folder_.file("to/one.txt", "old");
        folder_.file("to/two.txt", "old");
    }

    test::TempFolder folder_;
    test::XInput hand_;
    std::vector<std::string> sources_;
    std::vector<Hand> steps_;
};

// A carrier whose pace the test sets.
class Slow {
  public:
    explicit Slow(std::shared_ptr<Observer> observer)
        : observer_(observer), thread_(&Slow::run, this) {}
    ~Slow() { thread_.join(); }
    std::atomic<bool> may_end = false, was_cancelled = false;

  private:
    void run() {
        Progress progress = {312, 1000, 12400000, 80000000, "/home/me/A long name of a file.txt"};
        while (!may_end && !was_cancelled) {
            observer_->progressed(progress);
            was_cancelled = observer_->is_cancelled();
            usleep(1000);
        }
        observer_->ended({});
    }
    std::shared_ptr<Observer> observer_;
    std::thread thread_;
};

TEST_F(OperationWindowTest, ProgressAppearsAfterHalfASecondAndCancelEndsTheWork) {
    const Request request = {Kind::Copy, {"/a", "/b", "/c"}, "/home/me/Documents", false};
    NSDate* start = [NSDate date];
    NSTimeInterval shown_after = 0;
    bool ended = false;
    auto observer = MakeWindowObserver(request, [&](const Report&) { ended = true; });
    Slow slow(observer);
    run({[&] {
             if (!shown_window()) return false;
             shown_after = -[start timeIntervalSinceNow];
             return true;
         },
         [&] {
             NSView* view = [shown_window() contentView];
             return shows_text(view, @"Copying 3 items to “Documents”") &&
                    shows_text(view, @"312 of 1,000 items") &&
                    shows_text(view, @"A long name of a file.txt");
         },
         [&] { return click(@"Cancel"); }, [&] { return slow.was_cancelled.load(); }});
    EXPECT_GE(shown_after, 0.5);
    EXPECT_TRUE(ended);
    EXPECT_EQ(shown_window(), nil);
}

TEST_F(OperationWindowTest, WhatIsQuickShowsNoWindow) {
    sources_ = {folder_.file("from/one.txt", "new")};
    folder_.folder("to");
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 1u);
    EXPECT_EQ(report.outcomes[0].state, State::Done);
}

TEST_F(OperationWindowTest, ReturnSkipsAndLeavesWhatIsThere) {
    two_taken_names();
    const auto is_asked_about = [](NSString* name) {
        return shown_window() && shows_text([shown_window() contentView], name);
    };
    steps_ = {[&] { return is_asked_about(@"“one.txt” is already in “to”."); },
              [&] { return hand_.key("Return"), true; },
              [&] { return is_asked_about(@"“two.txt” is already in “to”."); },
              [&] { return hand_.key("Return"), true; }};
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 2u);
    EXPECT_EQ(report.outcomes[0].state, State::Skipped);
    EXPECT_EQ(report.outcomes[1].state, State::Skipped);
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "old");
}

TEST_F(OperationWindowTest, KeepBothAppliedToAllAsksOnce) {
    two_taken_names();
    steps_ = {[&] { return click(@"Apply to all"); },
              [&] {
                  NSButton* all = button_of([shown_window() contentView], @"Apply to all");
                  return [all state] == NSOnState;
              },
              [&] { return click(@"Keep Both"); }};
    copy();
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "old");
    EXPECT_EQ(test::read_file(folder_.path("to/one copy.txt")), "new");
    EXPECT_EQ(test::read_file(folder_.path("to/two copy.txt")), "new");
}

TEST_F(OperationWindowTest, ReplaceByMouseReplacesOne) {
    two_taken_names();
    steps_ = {
        [&] { return click(@"Replace"); },
        [&] { return shown_window() && shows_text([shown_window() contentView], @"two.txt"); },
        [&] { return click(@"Stop"); }};
    const Report report = copy();
    // What was copied before the stop, but had not got its name, is not there.
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes[1].state, State::Skipped);
    EXPECT_EQ(test::read_file(folder_.path("to/two.txt")), "old");
}

TEST_F(OperationWindowTest, WhatFailedIsShownAtTheEnd) {
    sources_ = {folder_.path("missing.txt")};
    folder_.folder("to");
    steps_ = {[&] {
        NSWindow* window = [NSApp modalWindow];
        if (!window) return false;
        hand_.key("Return");
        return true;
    }};
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 1u);
    EXPECT_EQ(report.outcomes[0].reason, "\"missing.txt\" is no longer there");
}

}  // namespace
