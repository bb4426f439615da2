// Our windows under a window manager: the effects of its buttons.
#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "operations_ui/conflict_panel.h"
#include "operations_ui/operation_window.h"
#include "support/app.h"
#include "support/managed_windows.h"
#include "support/right_click.h"
#include "support/steps.h"
#include "support/temp_folder.h"
#include "support/x_input.h"

using namespace operations;
using test::ManagedWindow;
using test::Steps;

namespace {

class DialogWindows : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        manager_ = new test::WindowManager;
        test::start_application();
    }
    static void TearDownTestSuite() { delete manager_; }

    // True once the window with this title stands still; `window_` is then that window.
    bool stands(const std::string& title) {
        const auto found = windows_.settled(title);
        if (found) window_ = *found;
        return found.has_value();
    }
    std::function<bool()> shows(const std::string& title) {
        return [this, title] { return stands(title) && windows_.has_keyboard(window_); };
    }
    void click(const test::ScreenPoint& point) {
        input_.move(point.x, point.y);
        input_.click(1);
    }
    // What each of our windows tells the window manager.
    void expect_dialog() {
        EXPECT_TRUE(window_.can_be_closed) << window_.title;
        EXPECT_TRUE(window_.has_one_size) << window_.title;
    }
    void close() {
        expect_dialog();
        click(windows_.close_button(window_));
    }

    DialogItemIndex run_alert(AlertStdCFStringAlertParamRec parameters,
                              const std::function<void(Steps&)>& script) {
        parameters.version = kStdCFStringAlertVersionOne;
        DialogRef alert = nullptr;
        CreateStandardAlert(kAlertCautionAlert, CFSTR("A question?"), CFSTR("Words."), &parameters,
                            &alert);
        Steps steps;
        script(steps);
        DialogItemIndex item = -1;
        steps.run_beside([&] { RunStandardAlert(alert, nullptr, &item); });
        return item;
    }
    Answer run_conflict(const std::function<void(Steps&)>& script) {
        Conflict conflict;
        conflict.kind = Kind::Move;
        conflict.source = folder_.file("from/one.txt", "new");
        conflict.target = folder_.file("to/one.txt", "old");
        Steps steps;
        script(steps);
        Answer answer;
        steps.run_beside([&] { answer = ask_about(conflict, false); });
        return answer;
    }
    static AlertStdCFStringAlertParamRec replace_question() {
        AlertStdCFStringAlertParamRec parameters = {};
        parameters.defaultText = CFSTR("Keep");
        parameters.cancelText = CFSTR("Replace");
        parameters.defaultButton = kAlertStdAlertOKButton;
        return parameters;
    }

    static inline test::WindowManager* manager_;
    test::ManagedWindows windows_;
    test::XInput input_;
    test::TempFolder folder_;
    ManagedWindow window_;
};

// A carrier that works until it is cancelled.
class Endless {
  public:
    explicit Endless(std::shared_ptr<Observer> observer)
        : observer_(observer), thread_([this] {
              while (!observer_->is_cancelled()) usleep(1000);
              observer_->ended({});
          }) {}
    ~Endless() { thread_.join(); }

  private:
    std::shared_ptr<Observer> observer_;
    std::thread thread_;
};

}  // namespace

TEST_F(DialogWindows, ClosingAnAlertHitsTheDefaultButtonWhereThereIsNoCancelButton) {
    const DialogItemIndex item = run_alert(replace_question(), [&](Steps& steps) {
        steps.when("the alert", shows("A question?"), [&] { close(); });
    });
    EXPECT_EQ(item, kAlertStdAlertOKButton);
}

TEST_F(DialogWindows, ClosingAnAlertHitsItsCancelButton) {
    AlertStdCFStringAlertParamRec parameters = replace_question();
    parameters.cancelButton = kAlertStdAlertCancelButton;
    const DialogItemIndex item = run_alert(parameters, [&](Steps& steps) {
        steps.when("the alert", shows("A question?"), [&] { close(); });
    });
    EXPECT_EQ(item, kAlertStdAlertCancelButton);
}

TEST_F(DialogWindows, ClosingTheConflictPanelStops) {
    const Answer answer = run_conflict([&](Steps& steps) {
        steps.when("the panel", shows("Name Already Taken"), [&] { close(); });
    });
    EXPECT_EQ(answer.choice, Choice::Stop);
}

TEST_F(DialogWindows, ClosingTheProgressWindowCancels) {
    const Request request = {Kind::Copy, {"/a", "/b", "/c"}, "/home/me/Documents", false};
    bool ended = false;
    Endless work(make_window_observer(request, [&](const Report&) { ended = true; }));
    Steps steps;
    steps.when(
        "the progress", [&] { return stands("Copying 3 items to “Documents”"); }, [&] { close(); });
    steps.run_beside([] { run_until_operations_end(); });
    EXPECT_TRUE(ended);
}

TEST_F(DialogWindows, TheWindowBelowAModalOneIsNotClosed) {
    ManagedWindow below;
    const auto ask_above = [&] {
        const DialogItemIndex item = run_alert(replace_question(), [&](Steps& steps) {
            steps.when("the alert", shows("A question?"), [&] {
                windows_.ask_to_close(below);
                input_.key("Return");  // arrives after it, in the order of the server's events
            });
        });
        EXPECT_EQ(item, kAlertStdAlertOKButton);
    };
    const Answer answer = run_conflict([&](Steps& steps) {
        steps
            .when("the panel", shows("Name Already Taken"),
                  [&] {
                      below = window_;
                      ask_above();
                  })
            .when(
                "the panel alone", [&] { return stands("Name Already Taken"); }, [&] { close(); });
    });
    EXPECT_EQ(answer.choice, Choice::Stop);
}

TEST_F(DialogWindows, AMinimisedQuestionComesBackWithTheKeyboard) {
    const DialogItemIndex item = run_alert(replace_question(), [&](Steps& steps) {
        steps
            .when("the alert", shows("A question?"),
                  [&] {
                      windows_.watch(window_);
                      click(windows_.minimise_button(window_));
                  })
            .when(
                "that it goes", [&] { return windows_.was_hidden(); }, [] {})
            .when("the alert again", shows("A question?"), [&] { input_.key("Return"); });
    });
    EXPECT_EQ(item, kAlertStdAlertOKButton);
}
