#include "offers/undo_lines.h"

#include <host/text.h>

namespace {

constexpr size_t most_in_message = 7;

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
    return lines;
}

std::vector<std::string> first_lines(std::vector<std::string> lines, size_t most) {
    if (lines.size() <= most) return lines;
    const size_t more = lines.size() - (most - 1);
    lines.resize(most - 1);
    lines.push_back(translated_count("and %s more", "and %s more", more, {std::to_string(more)}));
    return lines;
}

std::string message_of(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : first_lines(lines, most_in_message)) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}
