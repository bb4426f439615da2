#include "offers/shown_undo.h"

#include <errno.h>
#include <host/text.h>

#include <AppKit/AppKit.h>

#include <memory>
#include <new>
#include <system_error>
#include <thread>

#include "offers/notification.h"
#include "operations/engine.h"
#include "operations_ui/caution_alert.h"
#include "operations_ui/operation_window.h"

namespace {

using operations::Observer;
using operations::Report;

void tell(const UndoLines& lines) {
    if (!lines.problems.empty()) {
        return operations::show_caution(@(translated("This cannot be undone.")),
                                        @(message_of(lines.problems).c_str()));
    }
    const std::string text = message_of(lines.done);
    if (!show_notification({translated("Undone"), text, ""}))
        operations::show_note(@(translated("Undone.")), @(text.c_str()));
}

// The undo at work. Its windows say nothing at the end; tell() does.
struct Work {
    Report report;
    std::thread thread;
};

Report undo_at(const std::string& operation, Observer& observer) {
    if (operation.empty()) return operations::undo_last(observer);
    return operations::undo_operation(operation, observer);
}

Report refusal(const std::string& reason) {
    Report report;
    report.outcomes.push_back({"", operations::State::Failed, "", reason});
    return report;
}

// An exception that left the thread, or the main thread's Objective-C, would end the program.
void carry_out(Work* work, const std::shared_ptr<Observer>& observer, const std::string& operation) {
    try {
        work->report = undo_at(operation, *observer);
    } catch (const std::bad_alloc&) {
        work->report = refusal(error_text(ENOMEM));
    }
    observer->ended({});
}

void start(Work* work, const std::shared_ptr<Observer>& observer, const std::string& operation) {
    try {
        work->thread = std::thread(carry_out, work, observer, operation);
    } catch (const std::system_error&) {
        work->report = refusal(translated("the system cannot start another thread"));
        observer->ended({});
    }
}

}  // namespace

void undo_with_windows(const ShownUndo& undo) {
    const auto work = std::make_shared<Work>();
    const auto ended = [work, told = undo.ended](const Report&) {
        if (work->thread.joinable()) work->thread.join();
        const UndoLines lines = lines_of(work->report);
        if (!told || told(lines)) tell(lines);
    };
    std::shared_ptr<Observer> observer =
        operations::make_window_observer(translated("Undoing…"), ended);
    if (undo.wrapped) observer = undo.wrapped(observer);
    start(work.get(), observer, undo.operation);
}
