#include <host/text.h>

#include <Foundation/Foundation.h>

#include <optional>

#include "command/command_line.h"
#include "command/descriptor_limit.h"
#include "command/exit_signals.h"
#include "command/home_folder.h"
#include "command/plain_arguments.h"
#include "command/standard_streams.h"
#include "file_steps/state_folder.h"
#include "file_steps/temporaries.h"
#include "finderkit/settings_file.h"
#include "offers/notice.h"
#include "operations/left_trash_info.h"
#include "popup/application.h"
#include "popup/clipboard.h"
#include "popup/fonts_ahead.h"
#include "popup/install_command.h"
#include "popup/menu_command.h"
#include "popup/notice_keeper.h"
#include "popup/undo_command.h"
#include "resident/host_start.h"
#include "resident/memory_end.h"
#include "service/resident_host.h"
#include "settings/settings_command.h"
#include "settings_ui/settings_window.h"

namespace {

bool shows_text(const CommandLine& line) {
    return line.command == CommandLine::menu ||
           (line.command == CommandLine::settings &&
            line.settings_request.verb == SettingsVerb::window);
}

bool changes_settings(const CommandLine& line) {
    const SettingsVerb verb = line.settings_request.verb;
    return line.command == CommandLine::settings && verb != SettingsVerb::list &&
           verb != SettingsVerb::get;
}

int run_command(const CommandLine& line) {
    if (line.command == CommandLine::install) return run_install_command(line.install_request);
    const std::string problem = settings_problem();
    if (!problem.empty() && changes_settings(line)) {
        complain_about_usage(
            translated("%s; nothing was changed. Repair or remove that file", {problem}));
        return exit_failed;
    }
    if (!problem.empty())
        complain_about_usage(translated("%s; the default settings are used", {problem}));
    if (line.command == CommandLine::menu) return run_menu_command(line.menu_request);
    const bool has_verb = line.settings_request.verb != SettingsVerb::window;
    return has_verb ? run_settings_command(line.settings_request) : run_settings_window();
}

void prepare(const CommandLine& line, char* program) {
    std::optional<FontsAhead> fonts;
    if (shows_text(line)) fonts.emplace();
    prepare_toolkit(program);
}

int run(const CommandLine& line, char* program) {
    if (line.command == CommandLine::finished) return line.status;
    std::string problem;
    if (!ensure_home_folder(&problem)) {
        complain_about_usage(problem);
        return exit_failed;
    }
    operations::begin_to_remove_left_temporaries(operations::default_state_folder());
    operations::begin_to_remove_left_trash_info(operations::default_state_folder());
    if (line.command == CommandLine::undo) return run_undo_command();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    prepare(line, program);
    const int status = run_command(line);
    [pool release];
    return status;
}

// Global objects need memory too, so this comes before the first of them.
[[gnu::constructor(101)]] void expect_the_end_of_memory() { resident::end_when_memory_ends(); }

}  // namespace

int main(int argc, char** argv) {
    restore_arguments();
    if (argc == 2 && strcmp(argv[1], clipboard_keeper_argument) == 0) return run_clipboard_keeper();
    if (argc == 5 && strcmp(argv[1], notice_argument) == 0) {
        return run_notice_keeper(argv[0], {argv[2], argv[3], argv[4]});
    }
    const std::string problem = descriptor_problem();
    if (!problem.empty()) {
        complain_about_usage(problem);
        return exit_failed;
    }
    keep_streams_private();
    catch_exit_signals();
    atexit(end_child_and_remove_file);
    const bool is_host = argc == 3 && strcmp(argv[1], resident::host_argument) == 0;
    if (is_host) return run_resident_host(argv[2], argv[0]);
    const CommandLine line = read_command_line(argc, argv);
    const int status = run(line, argv[0]);
    return fflush(output_stream()) == 0 ? status : exit_failed;
}
