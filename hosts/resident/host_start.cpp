#include "resident/host_start.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace resident {

namespace {

constexpr int first_free_descriptor = 10;

// Puts the socket at its place. Everything else of the caller's is closed.
bool arrange_descriptors(int listener) {
    const int kept = fcntl(listener, F_DUPFD, first_free_descriptor);
    const int nothing = open("/dev/null", O_RDWR);
    if (kept < 0 || nothing < 0) return false;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (dup2(nothing, standard) < 0) return false;
    }
    if (dup2(kept, listening_descriptor) < 0) return false;
    close_range(listening_descriptor + 1, ~0u, 0);
    return true;
}

// Runs in a new process, so it uses system calls only.
[[noreturn]] void become_host(const char* const* words, int listener) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (setsid() < 0 || !arrange_descriptors(listener) || chdir("/") != 0) _exit(1);
    const pid_t host = fork();  // a process that leads no session can get no terminal
    if (host == 0) execv(words[0], const_cast<char* const*>(words));
    _exit(host > 0 ? 0 : 1);
}

}  // namespace

bool start_host(const std::string& program, const std::string& name, const Descriptor& listener) {
    const char* const words[] = {program.c_str(), host_argument, name.c_str(), nullptr};
    signal(SIGCHLD, SIG_DFL);  // where a caller ignores it, no child can be waited for
    const pid_t child = fork();
    if (child == 0) become_host(words, listener.get());
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace resident
