#include "offers/shown_undo.h"

#include <host/text.h>

#include <AppKit/AppKit.h>

#include <memory>

#include "offers/notification.h"
#include "offers/undo_work.h"
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

}  // namespace

// The windows say nothing at the end; tell() does.
void undo_with_windows(const ShownUndo& undo) {
    const auto work = std::make_shared<UndoWork>();
    const auto ended = [work, told = undo.ended](const Report&) {
        if (work->thread.joinable()) work->thread.join();
        const UndoLines lines = lines_of(work->report);
        if (!told || told(lines)) tell(lines);
    };
    std::shared_ptr<Observer> observer =
        operations::make_window_observer(translated("Undoing…"), ended);
    if (undo.wrapped) observer = undo.wrapped(observer);
    start_undo(work.get(), observer, undo.operation);
}
