#include "command/private_display.h"

#include <host/text.h>
#include <host/opening_files.h>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include "command/exit_signals.h"
#include "command/private_folder.h"

namespace {

constexpr int milliseconds_to_start = 20000;
constexpr const char* screen = "1920x1200x24";

bool started;

// Xlib would print a line of its own where our message says more, and end the process if the server
// went away meanwhile.
bool accepts_connections() {
    xcb_connection_t* const server = xcb_connect(nullptr, nullptr);
    const bool accepts = xcb_connection_has_error(server) == 0;
    xcb_disconnect(server);
    return accepts;
}

// An X authority entry that fits every host and display: family, address, number, name and data,
// each length in two bytes, the higher byte first.
std::string authority_entry() {
    char cookie[16];
    if (getrandom(cookie, sizeof cookie, 0) != sizeof cookie) return {};
    const std::string name = "MIT-MAGIC-COOKIE-1";
    std::string entry("\xff\xff\0\0\0\0\0", 7);
    entry += static_cast<char>(name.size());
    entry += name;
    entry += '\0';
    entry += static_cast<char>(sizeof cookie);
    return entry.append(cookie, sizeof cookie);
}

// Called in the child: becomes the server, which writes its display number to `number_out`.
[[noreturn]] void become_server(int number_out, const std::string& authority, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(1);
    fcntl(number_out, F_SETFD, 0);
    const std::string number = std::to_string(number_out);
    execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", screen, "-auth",
           authority.c_str(), "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
}

// The line that the server writes once it accepts connections; empty if it ended or took too long.
std::string read_number(int in) {
    std::string line;
    struct pollfd waiting = {in, POLLIN, 0};
    while (line.empty() || line.back() != '\n') {
        if (poll(&waiting, 1, milliseconds_to_start) <= 0) return {};
        char byte;
        if (read(in, &byte, 1) != 1) return {};
        line += byte;
    }
    line.pop_back();
    return line;
}

std::string why_not_started(pid_t server) {
    int status = 0;
    if (server > 0) {
        kill(server, SIGTERM);
        waitpid(server, &status, 0);
    }
    set_child_to_end(0);
    const bool missing = server > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 127;
    return missing
               ? translated(
                     "there is no display, and Xvfb, which would replace it, is not installed "
                     "(apt-get install xvfb)")
               : translated("there is no display, and Xvfb, which would replace it, did not start");
}

}  // namespace

bool display_answers(std::string* problem) {
    const char* name = getenv("DISPLAY");
    if (!name || !*name) {
        problem->clear();
        return false;
    }
    if (accepts_connections()) return true;
    *problem = translated(
        "the display %s refuses the connection; set DISPLAY (and XAUTHORITY) to one that is yours",
        {name});
    return false;
}

bool start_private_display(std::string* problem) {
    remove_left_private_folders();
    const std::string authority = write_into_private_folder(authority_entry());
    int ends[2];
    if (authority.empty() || pipe2(ends, O_CLOEXEC) != 0) {
        *problem = translated("cannot prepare an X server: %s", {error_text(errno)});
        return false;
    }
    const pid_t parent = getpid();
    const pid_t server = fork();
    if (server == 0) become_server(ends[1], authority, parent);
    close(ends[1]);
    if (server > 0) set_child_to_end(server);
    const std::string number = server > 0 ? read_number(ends[0]) : std::string();
    close(ends[0]);
    if (number.empty()) {
        *problem = why_not_started(server);
        return false;
    }
    // Started programs outlive the private display, and nobody looks at it: they get the user's
    // display.
    for (const char* name : {"DISPLAY", "XAUTHORITY"}) {
        set_variable_of_started_programs(name, getenv(name));
    }
    setenv("DISPLAY", (":" + number).c_str(), 1);
    setenv("XAUTHORITY", authority.c_str(), 1);
    return started = true;
}

bool has_private_display() { return started; }
