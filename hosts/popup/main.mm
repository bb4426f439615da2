#include <Foundation/Foundation.h>

#include "command/command_line.h"
#include "command/descriptor_limit.h"
#include "command/exit_signals.h"
#include "command/home_folder.h"
#include "command/plain_arguments.h"
#include "command/standard_streams.h"
#include "file_steps/state_folder.h"
#include "file_steps/temporaries.h"
#include "finderkit/settings_file.h"
#include "operations/left_trash_info.h"
#include "popup/application.h"
#include "popup/clipboard.h"
#include "popup/install_command.h"
#include "popup/menu_command.h"
#include "popup/undo_command.h"
#include "settings/settings_command.h"

namespace {

bool changes_settings(const CommandLine& line) {
    const SettingsVerb verb = line.settings_request.verb;
    return line.command == CommandLine::settings &&
           (verb == SettingsVerb::set || verb == SettingsVerb::reset);
}

int run_command(const CommandLine& line) {
    if (line.command == CommandLine::install) return RunInstallCommand(line.install_request);
    const std::string problem = SettingsProblem();
    if (!problem.empty() && changes_settings(line)) {
        Complain(problem + "; nothing was changed. Repair or remove that file");
        return exit_failed;
    }
    if (!problem.empty()) Complain(problem + "; the default settings are used");
    return line.command == CommandLine::menu ? RunMenuCommand(line.menu_request)
                                             : RunSettingsCommand(line.settings_request);
}

int run(const CommandLine& line, char* program) {
    if (line.command == CommandLine::finished) return line.status;
    std::string problem;
    if (!EnsureHomeFolder(&problem)) {
        Complain(problem);
        return exit_failed;
    }
    operations::BeginToRemoveLeftTemporaries(operations::StateFolder());
    operations::BeginToRemoveLeftTrashInfo(operations::StateFolder());
    if (line.command == CommandLine::undo) return RunUndoCommand();
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    PrepareToolkit(program);
    const int status = run_command(line);
    [pool release];
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    RestoreArguments();
    if (argc == 2 && strcmp(argv[1], clipboard_keeper_argument) == 0) return RunClipboardKeeper();
    const std::string problem = DescriptorProblem();
    if (!problem.empty()) {
        Complain(problem);
        return exit_failed;
    }
    KeepStreamsPrivate();
    CatchExitSignals();
    atexit(EndChildAndRemoveFile);
    const CommandLine line = ReadCommandLine(argc, argv);
    const int status = run(line, argv[0]);
    return fflush(OutputStream()) == 0 ? status : exit_failed;
}
