// The windows of file operations, with a real mouse and keyboard.
#include "operations_ui/operation_window.h"

#include <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "accessibility/shown_menus.h"
#include "operations/engine.h"
#include "panels/widget_panel.h"
#include "support/app.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

using namespace operations;

namespace {

// The only window that is shown, or nil.
WidgetPanel* shown_window() {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window isMemberOfClass:[WidgetPanel class]]) {
            return (WidgetPanel*)window;
        }
    }
    return nil;
}

const Widget* widget_of(WidgetPanel* panel, WidgetKind kind, const std::string& text) {
    if (!panel) return nullptr;
    for (const Widget& widget : [panel content].widgets) {
        const bool is_right = (widget.kind == WidgetKind::text) == (kind == WidgetKind::text);
        if (is_right && widget.text.find(text) != std::string::npos) return &widget;
    }
    return nullptr;
}

int check_item() {
    for (const Widget& widget : [shown_window() content].widgets) {
        if (widget.kind == WidgetKind::check) return widget.item;
    }
    return 0;
}

bool shows_text(const std::string& text) {
    return widget_of(shown_window(), WidgetKind::text, text) != nullptr;
}

// The user's actions beside the windows. A timer runs them, also while a panel is modal.
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
    void SetUp() override {
        test::start_application();
        alarm(240);  // a panel that nobody answers would stay
    }

    // Presses Return until the condition is false; a window may get the keyboard late.
    Hand press_return_while(Hand condition) {
        auto turns = std::make_shared<int>(0);
        return [this, condition, turns] {
            if (!condition()) return true;
            if ((*turns)++ % 50 == 0) hand_.key("Return");
            return false;
        };
    }

    Hand keys(const std::vector<std::string>& names) {
        return [this, names] {
            for (const std::string& name : names) hand_.key(name);
            return true;
        };
    }

    // Tries each step until it is true, then the next one.
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
        run_until_operations_end();
        [timer invalidate];
        // What waited for the end.
        while (hand->_next < steps.size() && steps[hand->_next]()) hand->_next++;
        EXPECT_EQ(hand->_next, steps.size()) << "not every step was come to";
    }

    // Clicks the button of the shown window as a mouse does.
    bool click(const std::string& title) {
        WidgetPanel* window = shown_window();
        const Widget* button = widget_of(window, WidgetKind::button, title);
        if (!button) return false;
        const MenuPoint at = [window middleOfItem:button->item];
        hand_.move(at.x, at.y);
        hand_.click(1);
        return true;
    }

    Report copy(bool replace = false) {
        Request request = {Kind::Copy, sources_, folder_.path("to"), replace};
        Report ended;
        auto engine = make_engine(folder_.path("state"));
        engine->carry_out(
            request, make_window_observer(request, [&](const Report& report) { ended = report; }));
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
    explicit Slow(std::shared_ptr<Observer> observer, uint64_t items_total = 1000)
        : observer_(observer), items_total_(items_total), thread_(&Slow::run, this) {}
    ~Slow() { thread_.join(); }
    std::atomic<bool> may_end = false, was_cancelled = false;
    std::atomic<uint64_t> bytes_done = 12400000;

  private:
    void run() {
        Progress progress = {items_total_ ? 312u : 0, items_total_, bytes_done, 80000000,
                             "/home/me/A long name of a file.txt"};
        while (!may_end && !was_cancelled) {
            progress.bytes_done = bytes_done;
            observer_->progressed(progress);
            was_cancelled = observer_->is_cancelled();
            usleep(1000);
        }
        observer_->ended({});
    }
    std::shared_ptr<Observer> observer_;
    const uint64_t items_total_;
    std::thread thread_;
};

TEST_F(OperationWindowTest, ProgressAppearsAfterHalfASecondAndCancelEndsTheWork) {
    const Request request = {Kind::Copy, {"/a", "/b", "/c"}, "/home/me/Documents", false};
    NSDate* start = [NSDate date];
    NSTimeInterval shown_after = 0;
    bool ended = false;
    auto observer = make_window_observer(request, [&](const Report&) { ended = true; });
    Slow slow(observer);
    run({[&] {
             if (!shown_window()) return false;
             shown_after = -[start timeIntervalSinceNow];
             return true;
         },
         [&] {
             return shows_text("Copying 3 items to “Documents”") &&
                    shows_text("312 of 1,000 items") && shows_text("A long name of a file.txt");
         },
         [&] { return click("Cancel"); }, [&] { return slow.was_cancelled.load(); }});
    EXPECT_GE(shown_after, 0.5);
    EXPECT_TRUE(ended);
    EXPECT_EQ(shown_window(), nil);
}

TEST_F(OperationWindowTest, AScreenReaderFindsItsNamesAndItsValueInSteps) {
    const Request request = {Kind::Copy, {"/a", "/b", "/c"}, "/home/me/Documents", false};
    ShownMenus read;
    Slow slow(make_window_observer(request, nullptr), 0);
    const auto bar = [&] {
        OpenRow row = read.row(0, 1);
        EXPECT_EQ(row.kind, OpenRow::bar);
        return row;
    };
    unsigned told = 0, number = 0;
    const auto is_told = [&] { return std::exchange(told, read.level(0).revision) != told; };
    run({[&] { return read.levels() == 1; },
         [&] {
             const OpenLevel level = read.level(0);
             number = level.number;
             EXPECT_EQ(level.kind, OpenLevel::progress);
             EXPECT_EQ(level.name, "Copying 3 items to “Documents”");
             EXPECT_EQ(level.rows, 5);
             EXPECT_EQ(level.highlighted, -1);
             EXPECT_EQ(bar().name, "Copying 3 items to “Documents”");
             EXPECT_EQ(read.row(0, 2).name, "A long name of a file.txt");
             is_told();
             slow.bytes_done = 14000000;
             return true;
         },
         [&] { return bar().value == 0.175; },
         [&] {
             EXPECT_FALSE(is_told()) << "each step is a tenth";
             slow.bytes_done = 40000000;
             return true;
         },
         [&] { return bar().value == 0.5; },
         [&] {
             EXPECT_TRUE(is_told());
             return click("Cancel");
         },
         [&] { return slow.was_cancelled.load(); }});
    EXPECT_EQ(read.levels(), 0u);
    EXPECT_GT(number, 0u);
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
    const Hand first = [&] { return shows_text("“one.txt” is already in “to”."); };
    const Hand second = [&] { return shows_text("“two.txt” is already in “to”."); };
    steps_ = {first, press_return_while(first), second, press_return_while(second)};
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 2u);
    EXPECT_EQ(report.outcomes[0].state, State::Skipped);
    EXPECT_EQ(report.outcomes[1].state, State::Skipped);
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "old");
}

TEST_F(OperationWindowTest, KeepBothAppliedToAllAsksOnce) {
    two_taken_names();
    steps_ = {[&] { return click("Apply to all"); },
              [&] { return widget_of(shown_window(), WidgetKind::check, "Apply to all")->on; },
              [&] { return click("Keep Both"); }};
    copy();
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "old");
    EXPECT_EQ(test::read_file(folder_.path("to/one copy.txt")), "new");
    EXPECT_EQ(test::read_file(folder_.path("to/two copy.txt")), "new");
}

TEST_F(OperationWindowTest, ReplaceByMouseReplacesOne) {
    two_taken_names();
    steps_ = {[&] { return click("Replace"); }, [&] { return shows_text("two.txt"); },
              [&] { return click("Stop"); }};
    const Report report = copy();
    // A file that was copied before the stop, but had not got its name, does not exist.
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes[1].state, State::Skipped);
    EXPECT_EQ(test::read_file(folder_.path("to/two.txt")), "old");
}

TEST_F(OperationWindowTest, APressThatIsLetGoElsewhereHitsNothing) {
    sources_ = {folder_.file("from/one.txt", "new")};
    folder_.file("to/one.txt", "old");
    const Hand press_and_leave = [this] {
        WidgetPanel* window = shown_window();
        const Widget* button = widget_of(window, WidgetKind::button, "Replace");
        if (!button) return false;
        const MenuPoint at = [window middleOfItem:button->item];
        hand_.move(at.x, at.y);
        hand_.press(1);
        hand_.move(at.x, at.y - 60);
        hand_.release(1);
        return true;
    };
    steps_ = {press_and_leave, [&] { return click("Stop"); }};
    EXPECT_TRUE(copy().stopped);
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "old");
}

TEST_F(OperationWindowTest, TabLeadsToReplaceAndSpaceHitsIt) {
    two_taken_names();
    const auto asks = [](const char* name) {
        return [name] { return shows_text(name) && [shown_window() isKeyWindow]; };
    };
    const Hand is_on = [] { return [shown_window() content].widget(check_item())->on; };
    steps_ = {asks("one.txt"), keys({"Tab", "space"}), is_on,
              keys({"Tab", "Right", "Tab", "Tab", "Left", "space"})};
    copy();
    EXPECT_EQ(test::read_file(folder_.path("to/one.txt")), "new");
    EXPECT_EQ(test::read_file(folder_.path("to/two.txt")), "new") << "applied to all";
}

TEST_F(OperationWindowTest, ControlCharactersOfNamesAreShownAsEscapes) {
    sources_ = {folder_.file("from/\x1b[31mred\n\xff.txt", "new")};
    folder_.file("to/\x1b[31mred\n\xff.txt", "old");
    const Hand asks = [&] { return shows_text("“\\x1b[31mred\\n\\xff.txt” is already in “to”."); };
    steps_ = {asks, press_return_while(asks)};
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 1u);
    EXPECT_EQ(report.outcomes[0].state, State::Skipped);
}

TEST_F(OperationWindowTest, WhatFailedIsShownAtTheEnd) {
    sources_ = {folder_.path("missing.txt")};
    folder_.folder("to");
    const Hand shown = [] { return [NSApp modalWindow] != nil; };
    steps_ = {shown, press_return_while(shown)};
    const Report report = copy();
    ASSERT_EQ(report.outcomes.size(), 1u);
    EXPECT_EQ(report.outcomes[0].reason, "\"missing.txt\" is no longer there");
}

}  // namespace
