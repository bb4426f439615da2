#include "finderkit/open_problems.h"

#include <AppKit/AppKit.h>
#include <host/opening_files.h>

#include <host/process.h>

#include "file_steps/visible_text.h"
#include "finderkit/context_menu.h"
#include "finderkit/plug_in_items.h"
#include "operations_ui/caution_alert.h"

// Notices a pick that had no effect without any attempt to open.
@interface PickWatch : NSObject {
  @private
    BOOL _isNameless;
    unsigned long _openings;
}
+ (void)watch;
@end

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
    return problem.file.empty() ? "The file" : window_name(problem.file);
}

std::string title_of(const OpenProblem& problem) {
    const std::string title = subject_of(problem) + " cannot be opened";
    return title + (problem.program.empty() ? "." : " with " + window_name(problem.program) + ".");
}

std::string sentence(std::string clause) {
    if (!clause.empty()) clause[0] = static_cast<char>(toupper(clause[0]));
    return clause + ".";
}

std::string lines_of(const std::vector<OpenProblem>& problems) {
    std::string lines;
    for (size_t i = 0; i < problems.size() && i < most_lines; i++) {
        lines += (lines.empty() ? "" : "\n") + subject_of(problems[i]) + ": " +
                 visible_text(problems[i].reason);
    }
    if (problems.size() > most_lines) {
        lines += "\nand " + std::to_string(problems.size() - most_lines) + " more";
    }
    return lines;
}

void show_alert(const std::string& title, const std::string& text) {
    operations::show_caution([NSString stringWithUTF8String:title.c_str()],
                             [NSString stringWithUTF8String:text.c_str()]);
}

}  // namespace

@implementation PickWatch

+ (void)watch {
    static PickWatch* watch;
    if (watch) return;
    watch = [self new];
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:watch
               selector:@selector(willPick:)
                   name:NSMenuWillSendActionNotification
                 object:nil];
    [center addObserver:watch
               selector:@selector(didPick:)
                   name:NSMenuDidSendActionNotification
                 object:nil];
}

- (void)willPick:(NSNotification*)notification {
    NSMenuItem* item = [[notification userInfo] objectForKey:@"MenuItem"];
    // The plug-in does nothing with a file whose path is no text.
    _isNameless = stands_for_file(item) && !path_of_item(item);
    _openings = count_of_openings();
}

- (void)didPick:(NSNotification*)notification {
    (void)notification;
    // Opening with a program and file operations work with any name.
    const bool did_something = count_of_openings() != _openings || apple_events_are_waiting();
    if (_isNameless && !did_something && listener()) {
        listener()({"", "", "its name is not UTF-8"});
    }
    _isNameless = NO;
}

@end

void listen_for_open_problems(std::function<void(const OpenProblem&)> wanted) {
    listener() = std::move(wanted);
    set_open_failure_listener(hear);
    [PickWatch watch];
}

std::string problem_line(const OpenProblem& problem) {
    std::string line = "cannot open ";
    line += problem.file.empty() ? "the file" : in_quotes(problem.file);
    if (!problem.program.empty()) line += " with " + in_quotes(problem.program);
    return line + ": " + visible_text(problem.reason);
}

void show_open_problems(const std::vector<OpenProblem>& problems) {
    if (problems.empty()) return;
    if (problems.size() == 1) {
        return show_alert(title_of(problems[0]), sentence(visible_text(problems[0].reason)));
    }
    show_alert(std::to_string(problems.size()) + " items cannot be opened.", lines_of(problems));
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
