#include <host/text.h>

#include "command/exit_signals.h"
#include "command/standard_streams.h"
#include "offers/shown_undo.h"
#include "offers/undo_lines.h"
#include "operations/engine.h"
#include "popup/asked_operations.h"

namespace {

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

std::string undo_at_once() {
    Quiet observer;
    const UndoLines lines = lines_of(operations::undo_last(observer));
    for (const std::string& line : lines.done) fprintf(output_stream(), "%s\n", line.c_str());
    return lines.problems.empty() ? "" : translated("cannot undo: %s", {lines.problems.front()});
}

// Whether the user is told, too.
bool note(const UndoLines& lines) {
    for (const std::string& line : lines.problems)
        note_problem(translated("cannot undo: %s", {line}));
    return !signal_caught();
}

}  // namespace

std::string undo_last_operation() {
    if (!is_user_asked()) return undo_at_once();
    do_after_menu([] { undo_with_windows({"", ended_by_signals, note}); });
    return {};
}
