#include "popup/undo_command.h"

#include <stdio.h>

#include <string>
#include <vector>

#include "command/command_line.h"
#include "operations/engine.h"

namespace {

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

// Writes only as many lines as one can read.
template <typename Write>
void tell(const std::vector<std::string>& lines, Write write) {
    constexpr size_t most_lines = 20;
    const size_t shown = lines.size() > most_lines ? most_lines - 1 : lines.size();
    for (size_t index = 0; index < shown; index++) write(lines[index]);
    if (shown < lines.size()) write("and " + std::to_string(lines.size() - shown) + " more");
}

}  // namespace

int run_undo_command() {
    Quiet observer;
    const operations::Report report = operations::undo_last(observer);
    std::vector<std::string> done, problems;
    for (const operations::Outcome& outcome : report.outcomes) {
        const bool is_done = outcome.state == operations::State::Done;
        if (!outcome.reason.empty()) (is_done ? done : problems).push_back(outcome.reason);
    }
    if (done.empty() && problems.empty()) done = {"nothing was left to undo"};
    tell(done, [](const std::string& line) { printf("%s\n", line.c_str()); });
    tell(problems, [](const std::string& line) { complain_about_usage("cannot undo: " + line); });
    if (!done.empty() && !problems.empty()) {
        complain_about_usage("settle this, then \"delvio undo\" undoes the rest");
    }
    return problems.empty() ? exit_done : exit_failed;
}
