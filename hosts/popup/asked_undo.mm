#include <host/text.h>

#include <AppKit/AppKit.h>

#include <memory>
#include <thread>

#include "command/exit_signals.h"
#include "command/standard_streams.h"
#include "operations/engine.h"
#include "operations_ui/caution_alert.h"
#include "operations_ui/operation_window.h"
#include "popup/asked_operations.h"
#include "popup/notification.h"
#include "popup/undo_command.h"

namespace {

constexpr size_t most_told = 6;

using operations::Observer;
using operations::Report;

class Quiet : public Observer {
    void ended(const Report&) override {}
};

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size() && i < most_told; i++) {
        text += (i ? "\n" : "") + lines[i];
    }
    if (lines.size() <= most_told) return text;
    const size_t more = lines.size() - most_told;
    return text + "\n" +
           translated_count("and %s more", "and %s more", more, {std::to_string(more)});
}

void tell(const UndoLines& lines) {
    for (const std::string& line : lines.problems)
        note_problem(translated("cannot undo: %s", {line}));
    if (signal_caught()) return;
    if (!lines.problems.empty()) {
        return operations::show_caution(
            [NSString stringWithUTF8String:translated("This cannot be undone.")],
            @(joined(lines.problems).c_str()));
    }
    const std::string text = joined(lines.done);
    if (!show_notification({translated("Undone"), text, ""}))
        operations::show_note(@(translated("Undone.")), @(text.c_str()));
}

// The undo at work. Its windows say nothing at the end; tell() does.
struct Undo {
    Report report;
    std::thread thread;
};

void undo_with_windows() {
    const auto undo = std::make_shared<Undo>();
    const auto ended = [undo](const Report&) {
        undo->thread.join();
        tell(lines_of(undo->report));
    };
    const auto observer =
        ended_by_signals(operations::make_window_observer(translated("Undoing…"), ended));
    undo->thread = std::thread([undo = undo.get(), observer] {
        undo->report = operations::undo_last(*observer);
        observer->ended({});
    });
}

std::string undo_at_once() {
    Quiet observer;
    const UndoLines lines = lines_of(operations::undo_last(observer));
    for (const std::string& line : lines.done) fprintf(output_stream(), "%s\n", line.c_str());
    return lines.problems.empty() ? "" : translated("cannot undo: %s", {lines.problems.front()});
}

}  // namespace

std::string undo_last_operation() {
    if (!is_user_asked()) return undo_at_once();
    do_after_menu(undo_with_windows);
    return {};
}
