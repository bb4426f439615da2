#include "popup/undo_command.h"

#include <host/text.h>

#include <stdio.h>

#include "command/command_line.h"
#include "offers/undo_lines.h"
#include "operations/engine.h"

namespace {

// Only as many lines as one can read.
constexpr size_t most_lines = 20;

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

}  // namespace

int run_undo_command() {
    Quiet observer;
    const UndoLines lines = lines_of(operations::undo_last(observer));
    for (const std::string& line : first_lines(lines.done, most_lines))
        printf("%s\n", line.c_str());
    for (const std::string& line : first_lines(lines.problems, most_lines))
        complain_about_usage(translated("cannot undo: %s", {line}));
    if (!lines.done.empty() && !lines.problems.empty()) {
        complain_about_usage(translated("settle this, then \"delvio undo\" undoes the rest"));
    }
    return lines.problems.empty() ? exit_done : exit_failed;
}
