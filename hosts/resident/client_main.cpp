// The command as people start it. It hands a menu for the screen to the resident host, and becomes
// the full program for everything else.
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "resident/client.h"
#include "resident/host_start.h"
#include "resident/memory_end.h"
#include "resident/program_paths.h"
#include "resident/shown_call.h"

namespace {

constexpr int failed = 1;
// Troubleshooting belongs to one process and its streams; the last one names a descriptor that only
// this process has.
constexpr const char* own_variables[] = {"DELVIO_TRACE", "DELVIO_TOOLKIT_LOG", "WAYLAND_SOCKET"};

bool is_set(const char* name) {
    const char* const value = getenv(name);
    return value && *value;
}

// A closed stream's number would be taken by the next file that is opened, which the host would
// then write to. The full program finds the stream closed again.
void fill_closed_streams() {
    int nothing = 0;
    while (nothing >= 0 && nothing <= STDERR_FILENO)
        nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing >= 0) close(nothing);
}

// A host that stays would keep a remote login, which forwards the display, from logging out.
bool has_display_of_this_machine() {
    const char* const display = getenv("DISPLAY");
    return display && (display[0] == ':' || strncmp(display, "unix:", strlen("unix:")) == 0);
}

// The bus starts the command for this. It waits until the command ends, or the name is there.
int have_bus_name_owned(const std::vector<std::string>& arguments, const std::string& program) {
    if (!has_display_of_this_machine()) {
        fprintf(stderr, "delvio: %s\n",
                translated("the session bus has started this without DISPLAY"));
        return failed;
    }
    return resident::run_by_host(arguments, program).value_or(failed);
}

bool is_for_host(const std::vector<std::string>& arguments) {
    for (const char* name : own_variables) {
        if (is_set(name)) return false;
    }
    const char* const wanted = getenv("DELVIO_RESIDENT");
    if (wanted && strcmp(wanted, "0") == 0) return false;
    return has_display_of_this_machine() && resident::asks_for_shown_menu(arguments);
}

// Global objects need memory too, so this comes before the first of them.
[[gnu::constructor(101)]] void expect_the_end_of_memory() { resident::end_when_memory_ends(); }

}  // namespace

int main(int argc, char** argv) {
    fill_closed_streams();
    const std::vector<std::string> arguments(argv + (argc > 0), argv + argc);
    const std::string program = resident::full_program();
    if (program.empty()) {
        fprintf(
            stderr, "delvio: %s\n",
            translated("its program libexec/delvio/delvio-host is missing; install Delvio again"));
        return failed;
    }
    if (arguments == std::vector<std::string>{resident::bus_argument}) {
        return have_bus_name_owned(arguments, program);
    }
    if (is_for_host(arguments)) {
        if (const auto status = resident::run_by_host(arguments, program)) return *status;
    }
    execv(program.c_str(), argv);
    fprintf(stderr, "delvio: %s\n",
            translated("cannot start %s: %s", {program, error_text(errno)}).c_str());
    return failed;
}
