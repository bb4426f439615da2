#include "popup/undo_command.h"

#include <host/text.h>

#include <stdio.h>

#include "command/command_line.h"
#include "operations/engine.h"

namespace {

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

// Only as many lines as one can read.
void shorten(std::vector<std::string>* lines) {
    constexpr size_t most_lines = 20;
    if (lines->size() <= most_lines) return;
    const size_t more = lines->size() - (most_lines - 1);
    lines->resize(most_lines - 1);
    lines->push_back(translated_count("and %s more", "and %s more", more, {std::to_string(more)}));
}

}  // namespace

UndoLines lines_of(const operations::Report& report) {
    UndoLines lines;
    for (const operations::Outcome& outcome : report.outcomes) {
        const bool is_done = outcome.state == operations::State::Done;
        if (!outcome.reason.empty()) {
            (is_done ? lines.done : lines.problems).push_back(outcome.reason);
        }
    }
    if (lines.done.empty() && lines.problems.empty())
        lines.done = {translated("nothing was left to undo")};
    shorten(&lines.done);
    shorten(&lines.problems);
    return lines;
}

int run_undo_command() {
    Quiet observer;
    const UndoLines lines = lines_of(operations::undo_last(observer));
    for (const std::string& line : lines.done) printf("%s\n", line.c_str());
    for (const std::string& line : lines.problems)
        complain_about_usage(translated("cannot undo: %s", {line}));
    if (!lines.done.empty() && !lines.problems.empty()) {
        complain_about_usage(translated("settle this, then \"delvio undo\" undoes the rest"));
    }
    return lines.problems.empty() ? exit_done : exit_failed;
}
