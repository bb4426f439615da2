#include "popup/asked_operations.h"

#include <host/text.h>

#include <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <host/process.h>
#include <fcntl.h>

#include <condition_variable>
#include <mutex>

#include "command/exit_signals.h"
#include "file_steps/visible_text.h"
#include "finderkit/desktop_carrier.h"
#include "finderkit/file_operations.h"
#include "finderkit/settings_file.h"
#include "offers/notice.h"
#include "operations/engine.h"
#include "operations_ui/operation_window.h"
#include "settings/settings_table.h"

namespace {

using operations::Observer;
using operations::Outcome;
using operations::in_quotes;
using operations::Report;
using operations::Request;
using operations::State;

std::mutex mutex;
std::condition_variable changed;
int unattended = 0;  // requests that have not ended; those with windows are counted there
std::vector<Outcome> outcomes;
std::vector<std::string> problems;
std::vector<std::function<void()>> left_for_later;
bool is_attended = false;

void note_outcomes(const Report& report) {
    const std::lock_guard guard(mutex);
    outcomes.insert(outcomes.end(), report.outcomes.begin(), report.outcomes.end());
}

// For a pick: nobody is there to ask, so taken names are skipped.
class Unattended : public Observer {
  public:
    Unattended() {
        const std::lock_guard guard(mutex);
        unattended++;
    }

  private:
    bool is_cancelled() override { return signal_caught() != 0; }
    void ended(const Report& report) override {
        note_outcomes(report);
        const std::lock_guard guard(mutex);
        unattended--;
        changed.notify_all();
    }
};

// For a shown menu: the user answers in the windows; a signal ends the work like their Cancel
// button.
class Attended : public Observer {
  public:
    explicit Attended(std::shared_ptr<Observer> windows) : windows_(std::move(windows)) {}

  private:
    void progressed(const operations::Progress& progress) override {
        windows_->progressed(progress);
    }
    operations::Answer ask(const operations::Conflict& conflict) override {
        if (signal_caught()) return {operations::Choice::Stop, true};
        return windows_->ask(conflict);
    }
    bool is_cancelled() override { return signal_caught() != 0 || windows_->is_cancelled(); }
    void ended(const Report& report) override { windows_->ended(report); }

    const std::shared_ptr<Observer> windows_;
};

// A signal ends the work only when no file is left half done.
void delay_signals() {
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    set_signal_descriptor(nowhere);
}

std::shared_ptr<Observer> observe(const Request& request, bool attended) {
    delay_signals();
    if (!attended) return std::make_shared<Unattended>();
    const auto ended = [request](const Report& report) {
        note_outcomes(report);
        if (!signal_caught()) offer_undo(request, report);
    };
    return std::make_shared<Attended>(operations::make_window_observer(request, ended));
}

bool is_for_file_manager() {
    Boolean valid = false;
    return CFPreferencesGetAppIntegerValue((CFStringRef) @(file_manager_setting),
                                           (CFStringRef) @(settings_domain), &valid) != 0 &&
           valid;
}

std::string line_of(const Outcome& outcome) {
    const std::string file = in_quotes(outcome.source);
    if (outcome.state == State::Skipped) {
        if (outcome.reason.empty()) return translated("skipped %s", {file});
        return translated("skipped %s: %s", {file, outcome.reason});
    }
    if (outcome.reason.empty()) return translated("failed: %s", {file});
    return translated("failed: %s: %s", {file, outcome.reason});
}

}  // namespace

void offer_file_operations(const MenuRequest& request) {
    outcomes.clear();
    problems.clear();
    left_for_later.clear();
    const bool attended = is_attended = request.form == MenuForm::shown;
    const DialogItemIndex answer =
        request.replace ? DialogItemIndex{kAlertStdAlertCancelButton} : kAlertAnswerDefault;
    answer_standard_alerts(attended ? DialogItemIndex{kAlertAnswerAsk} : answer);
    FileOperationService service;
    service.carrier = operations::make_engine();
    // The file manager asks its own questions, so it is only used when the user is there.
    if (attended && is_for_file_manager()) {
        service.carrier = make_desktop_carrier(operations::make_engine());
    }
    service.observer = [attended](const Request& wanted) { return observe(wanted, attended); };
    set_file_operation_service(service);
}

bool is_user_asked() { return is_attended; }

std::shared_ptr<Observer> ended_by_signals(std::shared_ptr<Observer> windows) {
    delay_signals();
    return std::make_shared<Attended>(std::move(windows));
}

void do_after_menu(std::function<void()> work) { left_for_later.push_back(std::move(work)); }

void note_problem(const std::string& line) { problems.push_back(line); }

int finish_file_operations() {
    for (const auto& work : left_for_later) work();
    operations::run_until_operations_end();
    std::unique_lock lock(mutex);
    changed.wait(lock, [] { return unattended == 0; });
    int status = exit_done;
    for (const Outcome& outcome : outcomes) {
        // A user who was asked knows what was skipped.
        const bool told = is_attended && outcome.state == State::Skipped;
        if (outcome.state == State::Done || told) continue;
        complain_about_usage(line_of(outcome));
        if (outcome.state == State::Failed) status = exit_failed;
        if (status == exit_done) status = exit_skipped;
    }
    for (const std::string& line : problems) complain_about_usage(line);
    return problems.empty() ? status : exit_failed;
}
