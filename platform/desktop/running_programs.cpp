#include "desktop/running_programs.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>

#include "desktop/installed_applications.h"
#include "x11/desktop_windows.h"

namespace {

using files::InstalledApplication;

std::string process_file(pid_t process, const char* name) {
    return "/proc/" + std::to_string(process) + "/" + name;
}

std::string executable_of(pid_t process) {
    char path[PATH_MAX];
    const ssize_t length = readlink(process_file(process, "exe").c_str(), path, sizeof path);
    if (length <= 0) return {};
    std::string result(path, static_cast<size_t>(length));
    // The program file was replaced by a newer one while the program runs.
    const std::string gone = " (deleted)";
    if (result.ends_with(gone)) result.resize(result.size() - gone.size());
    return result;
}

// Reads strings that end in NULs; at most 64 KiB, and empty when we may not read them.
std::string strings_of(pid_t process, const char* name) {
    const int file = open(process_file(process, name).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    static char strings[64 << 10];
    size_t length = 0;
    ssize_t count;
    while ((count = read(file, strings + length, sizeof strings - length)) > 0) {
        length += static_cast<size_t>(count);
    }
    close(file);
    return {strings, length};
}

std::string variable_in(const std::string& environment, const std::string& name) {
    const std::string start = name + "=";
    for (size_t at = 0; at < environment.size(); at = environment.find('\0', at) + 1) {
        if (environment.compare(at, start.size(), start) == 0) {
            return environment.c_str() + at + start.size();
        }
        if (environment.find('\0', at) == environment.npos) break;
    }
    return {};
}

std::string base_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string id_of(const std::string& entry) {
    const std::string name = base_name(entry);
    return name.ends_with(".desktop") ? name.substr(0, name.size() - 8) : std::string();
}

// The ".app" bundle that a program stands in; empty when there is none.
std::string bundle_around(const std::string& executable) {
    const size_t end = executable.rfind(".app/");
    return end == executable.npos ? std::string() : executable.substr(0, end + 4);
}

// What is known about a program before its application is looked for.
struct Traces {
    const DesktopWindow& window;
    std::string executable;
    std::string program;  // the executable's name; of a script, the script's
    // Entries from its environment. The desktop notes which application it has started, for the
    // process itself and not for its children; these inherit the hint.
    std::string launched, hint;
};

Traces traces_of(const DesktopWindow& window, const std::string& executable) {
    Traces traces = {window, executable, base_name(executable), {}, {}};
    const std::string environment = strings_of(window.process, "environ");
    traces.hint = variable_in(environment, "BAMF_DESKTOP_FILE_HINT");
    if (variable_in(environment, "GIO_LAUNCHED_DESKTOP_FILE_PID") ==
        std::to_string(window.process)) {
        traces.launched = variable_in(environment, "GIO_LAUNCHED_DESKTOP_FILE");
    }
    const std::string words = strings_of(window.process, "cmdline");
    const bool is_script = files::runs_many_applications(traces.program);
    const size_t second = words.find('\0');
    if (is_script && second != words.npos && second + 1 < words.size()) {
        traces.program = base_name(words.c_str() + second + 1);
    }
    return traces;
}

bool names_window(const std::string& name, const DesktopWindow& window) {
    return !name.empty() &&
           (files::same_text(name, window.class_name) || files::same_text(name, window.instance));
}

bool by_window_class(const InstalledApplication& application, const Traces& traces) {
    return names_window(application.window_class, traces.window);
}

bool names_entry(const std::string& entry, const InstalledApplication& application) {
    return !entry.empty() && (entry == application.path || id_of(entry) == application.id);
}

bool by_launcher(const InstalledApplication& application, const Traces& traces) {
    return names_entry(traces.launched, application);
}

bool by_id(const InstalledApplication& application, const Traces& traces) {
    const std::string& id = application.id;
    return names_window(id, traces.window) ||
           names_window(id.substr(id.rfind('.') + 1), traces.window);
}

bool by_program(const InstalledApplication& application, const Traces& traces) {
    return !application.program.empty() && application.program == traces.program;
}

bool by_hint(const InstalledApplication& application, const Traces& traces) {
    return names_entry(traces.hint, application);
}

using Match = bool (*)(const InstalledApplication&, const Traces&);

// The surest match comes first. The hint comes last because children inherit it.
const Match matches[] = {by_window_class, by_launcher, by_id, by_program, by_hint};

const InstalledApplication* application_of(const Traces& traces) {
    const std::vector<InstalledApplication>& all = files::installed_applications();
    for (const Match match : matches) {
        const InstalledApplication* hidden = nullptr;
        for (const InstalledApplication& application : all) {
            if (!match(application, traces)) continue;
            if (application.is_shown) return &application;
            if (!hidden) hidden = &application;
        }
        if (hidden) return hidden;
    }
    return nullptr;
}

std::string bundle_name(const std::string& bundle) {
    const std::string name = base_name(bundle);
    return name.substr(0, name.size() - 4);
}

RunningProgram program_of(const DesktopWindow& window) {
    RunningProgram program = {window.process,  executable_of(window.process), {}, {}, {},
                              window.is_normal};
    const Traces traces = traces_of(window, program.executable);
    program.application = bundle_around(program.executable);
    if (!program.application.empty()) {
        program.name = bundle_name(program.application);
    } else if (const InstalledApplication* application = application_of(traces)) {
        program.application = application->path;
        program.identifier = application->id;
        program.name = application->name;
    }
    if (program.name.empty()) program.name = traces.program;
    if (program.name.empty()) program.name = window.class_name;
    return program;
}

void note_applications(const std::vector<RunningProgram>& programs) {
    std::vector<std::string> paths;
    for (const RunningProgram& program : programs) {
        if (!program.is_regular) continue;
        if (!program.application.empty()) {
            paths.push_back(program.application);
        } else if (!files::runs_many_applications(base_name(program.executable))) {
            paths.push_back(program.executable);
        }
    }
    files::note_running_applications(paths);
}

bool is_running(pid_t process) { return access(process_file(process, "").c_str(), F_OK) == 0; }

}  // namespace

std::vector<RunningProgram> running_programs() {
    std::vector<DesktopWindow> windows = desktop_windows();
    // A process's application is told by its normal windows, if it has any.
    std::stable_partition(windows.begin(), windows.end(),
                          [](const DesktopWindow& window) { return window.is_normal; });
    std::vector<RunningProgram> programs;
    for (const DesktopWindow& window : windows) {
        const bool known = std::any_of(
            programs.begin(), programs.end(),
            [&](const RunningProgram& program) { return program.process == window.process; });
        if (window.process > 0 && !known && is_running(window.process)) {
            programs.push_back(program_of(window));
        }
    }
    note_applications(programs);
    return programs;
}
