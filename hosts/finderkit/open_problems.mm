#include "finderkit/open_problems.h"

#include <glib.h>
#include <host/text.h>

#include <AppKit/AppKit.h>
#include <host/opening_files.h>

#include "file_steps/visible_text.h"
#include "finderkit/context_menu.h"
#include "finderkit/pick_watch.h"
#include "operations_ui/caution_alert.h"

namespace {

using operations::in_quotes;
using operations::visible_text;
using operations::window_name;

constexpr size_t most_lines = 6;

std::function<void(const OpenProblem&)>& listener() {
    static auto& listener = *new std::function<void(const OpenProblem&)>;
    return listener;
}

void hear(const char* file, const char* program, const char* reason) {
    if (listener()) listener()({file, program, reason});
}

std::string subject_of(const OpenProblem& problem) {
    return problem.file.empty() ? translated("The file") : window_name(problem.file);
}

std::string title_of(const OpenProblem& problem) {
    if (problem.kind == Problem::memory) return translated("Not everything could be done.");
    if (problem.kind == Problem::folder) return translated("This could not be done.");
    const std::string subject = subject_of(problem);
    if (problem.program.empty()) return translated("%s cannot be opened.", {subject});
    return translated("%s cannot be opened with %s.", {subject, window_name(problem.program)});
}

// A clause with a capital letter and a full stop.
std::string sentence(const std::string& clause) {
    if (!g_utf8_validate(clause.c_str(), -1, nullptr) || clause.empty()) return clause;
    char first[6];
    const int length = g_unichar_to_utf8(g_unichar_toupper(g_utf8_get_char(clause.c_str())), first);
    const std::string rest = g_utf8_next_char(clause.c_str());
    return translated("%s.", {std::string(first, static_cast<size_t>(length)) + rest});
}

std::string line_of(const OpenProblem& problem) {
    const std::string reason = visible_text(problem.reason);
    const bool is_whole = problem.kind == Problem::memory || problem.kind == Problem::folder;
    return is_whole ? sentence(reason) : subject_of(problem) + ": " + reason;
}

std::string lines_of(const std::vector<OpenProblem>& problems) {
    std::string lines;
    for (size_t i = 0; i < problems.size() && i < most_lines; i++) {
        lines += (lines.empty() ? "" : "\n") + line_of(problems[i]);
    }
    if (problems.size() > most_lines) {
        const size_t more = problems.size() - most_lines;
        lines +=
            "\n" + translated_count("and %s more", "and %s more", more, {std::to_string(more)});
    }
    return lines;
}

void show_alert(const std::string& title, const std::string& text) {
    operations::show_caution([NSString stringWithUTF8String:title.c_str()],
                             [NSString stringWithUTF8String:text.c_str()]);
}

}  // namespace

void listen_for_open_problems(std::function<void(const OpenProblem&)> wanted) {
    listener() = std::move(wanted);
    set_open_failure_listener(hear);
    watch_picks([](const OpenProblem& problem) {
        if (listener()) listener()(problem);
    });
}

std::string problem_line(const OpenProblem& problem) {
    const std::string reason = visible_text(problem.reason);
    const std::string file =
        problem.file.empty() ? translated("the file") : in_quotes(problem.file);
    switch (problem.kind) {
        case Problem::memory:
            return translated("not everything could be done: %s", {reason});
        case Problem::folder:
            return reason;
        case Problem::item:
            return translated("failed: %s: %s", {file, reason});
        case Problem::opening:
            break;
    }
    if (problem.program.empty()) return translated("cannot open %s: %s", {file, reason});
    return translated("cannot open %s with %s: %s", {file, in_quotes(problem.program), reason});
}

void show_open_problems(const std::vector<OpenProblem>& problems) {
    if (problems.empty()) return;
    if (problems[0].kind == Problem::item) {
        return show_alert(translated_count("One item failed.", "%s items failed.", problems.size(),
                                           {std::to_string(problems.size())}),
                          lines_of(problems));
    }
    if (problems.size() == 1) {
        return show_alert(title_of(problems[0]), sentence(visible_text(problems[0].reason)));
    }
    show_alert(translated_count("%s item cannot be opened.", "%s items cannot be opened.",
                                problems.size(), {std::to_string(problems.size())}),
               lines_of(problems));
}

void show_problem(const std::string& title, const std::string& reason) {
    show_alert(visible_text(title), sentence(visible_text(reason)));
}

bool open_picked_file(const std::string& path) {
    // The workspace takes a path, or, for a name that is not UTF-8, a file URL's text.
    FINode* node = [[[FINode alloc] initWithNode:{path}] autorelease];
    NSString* name = [[node url] path] ?: [[node url] absoluteString];
    return [[NSWorkspace sharedWorkspace] openFile:name];
}
