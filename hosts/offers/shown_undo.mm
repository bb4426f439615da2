#include "offers/shown_undo.h"

#include <host/text.h>

#include <AppKit/AppKit.h>

#include <memory>
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

}  // namespace

void undo_with_windows(const ShownUndo& undo) {
    const auto work = std::make_shared<Work>();
    const auto ended = [work, told = undo.ended](const Report&) {
        work->thread.join();
        const UndoLines lines = lines_of(work->report);
        if (!told || told(lines)) tell(lines);
    };
    std::shared_ptr<Observer> observer =
        operations::make_window_observer(translated("Undoing…"), ended);
    if (undo.wrapped) observer = undo.wrapped(observer);
    work->thread = std::thread([work = work.get(), observer, operation = undo.operation] {
        work->report = undo_at(operation, *observer);
        observer->ended({});
    });
}
