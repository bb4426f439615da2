#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <host/process.h>
#include <gtest/gtest.h>

#include <stdlib.h>

#include "panels/alert_content.h"
#include "panels/alert_panel.h"
#include "support/app.h"
#include "support/right_click.h"
#include "support/steps.h"
#include "support/x_input.h"

namespace {

using test::Steps;

class StandardAlert : public testing::Test {
  protected:
    StandardAlert() { test::start_application(); }
    ~StandardAlert() override {
        input_.let_go();
        answer_standard_alerts(kAlertAnswerAsk);
        [pool_ release];
    }

    static AlertPanel* panel() {
        NSWindow* window = [NSApp modalWindow];
        return [window isKindOfClass:[AlertPanel class]] ? static_cast<AlertPanel*>(window) : nil;
    }
    // The alert gets keys once the server has given it the focus.
    static bool is_open() { return [panel() isVisible] && [panel() isKeyWindow]; }

    static AlertStdCFStringAlertParamRec parameters() {
        AlertStdCFStringAlertParamRec made = {};
        made.version = kStdCFStringAlertVersionOne;
        made.defaultText = CFSTR("Keep");
        made.cancelText = CFSTR("Replace");
        made.defaultButton = kAlertStdAlertOKButton;
        return made;
    }
    void click(int item) {
        const MenuPoint at = [panel() middleOfItem:item];
        ASSERT_GE(at.x, 0);
        input_.move(at.x, at.y);
        input_.click(1);
    }
    DialogItemIndex run(const AlertStdCFStringAlertParamRec& given,
                        const std::function<void(Steps&)>& script) {
        DialogRef alert = nullptr;
        EXPECT_EQ(CreateStandardAlert(kAlertCautionAlert, CFSTR("A question?"),
                                      CFSTR("Words that explain the question."), &given, &alert),
                  noErr);
        Steps steps;
        script(steps);
        DialogItemIndex item = -1;
        steps.run_beside([&] { error_ = RunStandardAlert(alert, nullptr, &item); });
        return item;
    }
    DialogItemIndex run_with_key(const AlertStdCFStringAlertParamRec& given, const char* key) {
        return run(given, [&](Steps& steps) {
            steps.when("the alert", is_open, [this, key] { input_.key(key); });
        });
    }

    NSAutoreleasePool* pool_ = [NSAutoreleasePool new];
    test::XInput input_;
    OSStatus error_ = noErr;
};

}  // namespace

TEST_F(StandardAlert, AClickHitsItsButton) {
    for (const int item : {1, 2}) {
        EXPECT_EQ(
            run(parameters(),
                [&](Steps& steps) { steps.when("the alert", is_open, [&] { click(item); }); }),
            item);
        EXPECT_EQ(error_, noErr);
        EXPECT_EQ(panel(), nil);
    }
}

TEST_F(StandardAlert, ReturnHitsTheDefaultButton) {
    EXPECT_EQ(run_with_key(parameters(), "Return"), 1);
    EXPECT_EQ(run_with_key(parameters(), "KP_Enter"), 1);
    AlertStdCFStringAlertParamRec other = parameters();
    other.defaultButton = kAlertStdAlertCancelButton;
    EXPECT_EQ(run_with_key(other, "Return"), 2);
}

TEST_F(StandardAlert, EscapeHitsTheCancelButtonOrElseTheDefaultButton) {
    AlertStdCFStringAlertParamRec given = parameters();
    EXPECT_EQ(run_with_key(given, "Escape"), 1);
    given.cancelButton = kAlertStdAlertCancelButton;
    EXPECT_EQ(run_with_key(given, "Escape"), 2);
}

TEST_F(StandardAlert, TabAndSpaceHitAnyButton) {
    EXPECT_EQ(run(parameters(),
                  [&](Steps& steps) {
                      steps.when("the alert", is_open, [&] {
                          for (const char* key : {"Tab", "Tab", "space"}) input_.key(key);
                      });
                  }),
              2);
}

TEST_F(StandardAlert, APressThatIsLetGoElsewhereHitsNothing) {
    EXPECT_EQ(run(parameters(),
                  [&](Steps& steps) {
                      steps.when("the alert", is_open, [&] {
                          const MenuPoint from = [panel() middleOfItem:2];
                          input_.move(from.x, from.y);
                          input_.press(1);
                          input_.move(from.x, from.y - 60);
                          input_.release(1);
                          input_.key("Return");
                      });
                  }),
              1);
}

TEST_F(StandardAlert, AThirdButtonStandsBesideTheOthers) {
    AlertStdCFStringAlertParamRec given = parameters();
    given.otherText = CFSTR("Something else, in many words");
    EXPECT_EQ(run(given,
                  [&](Steps& steps) {
                      steps.when("the alert", is_open, [&] {
                          EXPECT_LT([panel() middleOfItem:3].x, [panel() middleOfItem:2].x);
                          EXPECT_LT([panel() middleOfItem:2].x, [panel() middleOfItem:1].x);
                          click(3);
                      });
                  }),
              3);
}

TEST_F(StandardAlert, TheRunLoopGoesOnMeanwhile) {
    bool handled = false;
    declare_process_signature('MACS');
    AEInstallEventHandler(
        'test', 'test',
        [](const AppleEvent*, AppleEvent*, void* refcon) -> OSErr {
            *static_cast<bool*>(refcon) = true;
            return noErr;
        },
        &handled, false);
    run(parameters(), [&](Steps& steps) {
        steps
            .when("the alert", is_open,
                  [] {
                      const OSType signature = 'MACS';
                      AEAddressDesc finder;
                      AECreateDesc(typeApplSignature, &signature, sizeof signature, &finder);
                      AppleEvent event;
                      AECreateAppleEvent('test', 'test', &finder, kAutoGenerateReturnID,
                                         kAnyTransactionID, &event);
                      AESend(&event, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout,
                             nullptr, nullptr);
                      AEDisposeDesc(&event);
                      AEDisposeDesc(&finder);
                  })
            .when(
                "the event", [&] { return handled; }, [&] { input_.key("Return"); });
    });
    AERemoveEventHandler('test', 'test', nullptr, false);
    declare_process_signature(0);
}

TEST_F(StandardAlert, AnEndedModalSessionIsNoAnswer) {
    EXPECT_EQ(
        run(parameters(),
            [&](Steps& steps) { steps.when("the alert", is_open, [] { end_modal_session(); }); }),
        0);
    EXPECT_EQ(error_, userCanceledErr);
}

TEST_F(StandardAlert, AHostMayAnswerInsteadOfTheUser) {
    const auto nothing = [](Steps&) {};
    answer_standard_alerts(kAlertStdAlertCancelButton);
    EXPECT_EQ(run(parameters(), nothing), 2);
    AlertStdCFStringAlertParamRec other = parameters();
    other.defaultButton = kAlertStdAlertCancelButton;
    answer_standard_alerts(kAlertAnswerDefault);
    EXPECT_EQ(run(other, nothing), 2);
    EXPECT_EQ(run(parameters(), nothing), 1);
}

TEST_F(StandardAlert, ItHasRoomOnTheScreenHoweverMuchItSaysAtEveryScale) {
    AlertWords words = {Sign::caution, "6 items failed.", "", {{1, "OK"}}, 1, 0};
    const std::string deep(4000, 'x');
    for (const char* each : {"/a/", "/b/", "/c/", "/d/", "/e/", "/f/"}) {
        words.explanation += std::string("cannot read ") + each + deep + "/the end\n";
    }
    for (const char* scale : {"1", "2", "3"}) {
        setenv("GDK_SCALE", scale, 1);
        const PanelContent content = alert_content(words);
        EXPECT_LT(content.size.width, [[NSScreen mainScreen] frame].size.width) << scale;
        EXPECT_LT(content.size.height, [[NSScreen mainScreen] frame].size.height) << scale;
        const std::string& shown = content.widgets[2].text;
        EXPECT_NE(shown.find("x/the end\ncannot read /b/x"), shown.npos) << shown;
        EXPECT_GE(content.look.scale, 0.9) << "it can still be read";
    }
    unsetenv("GDK_SCALE");
}

TEST_F(StandardAlert, BadParametersAreRefused) {
    DialogRef alert = reinterpret_cast<DialogRef>(1);
    AlertStdCFStringAlertParamRec given = parameters();
    given.version = 2;
    EXPECT_EQ(CreateStandardAlert(kAlertPlainAlert, CFSTR("?"), nullptr, &given, &alert), paramErr);
    EXPECT_EQ(alert, nullptr);
    DialogItemIndex item = 0;
    EXPECT_EQ(RunStandardAlert(nullptr, nullptr, &item), paramErr);
}

TEST_F(StandardAlert, WithoutParametersThereIsOneButton) {
    DialogRef alert = nullptr;
    ASSERT_EQ(CreateStandardAlert(kAlertNoteAlert, CFSTR("Done."), nullptr, nullptr, &alert),
              noErr);
    DialogItemIndex item = 0;
    Steps steps;
    steps.when("the alert", is_open, [&] {
        EXPECT_EQ([panel() middleOfItem:2].x, -1);
        click(1);
    });
    steps.run_beside([&] { RunStandardAlert(alert, nullptr, &item); });
    EXPECT_EQ(item, 1);
}
