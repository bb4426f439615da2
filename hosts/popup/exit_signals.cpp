#include "popup/exit_signals.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>

// Everything that a signal handler touches is plain memory and atomics.
namespace {

std::atomic<pid_t> child_to_end{0};
std::atomic<int> signal_descriptor{-1};
std::atomic<int> caught_signal{0};
char file_to_remove[PATH_MAX];
char folder_to_remove[PATH_MAX];

constexpr int exit_signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
constexpr unsigned seconds_to_close = 2;

void undo() {
    const pid_t child = child_to_end.exchange(0);
    if (child > 0) kill(child, SIGTERM);
    if (*file_to_remove) unlink(file_to_remove);
    if (*folder_to_remove) rmdir(folder_to_remove);
    *file_to_remove = *folder_to_remove = 0;
}

void end_now(int number) {
    undo();
    _exit(128 + number);
}

void handle(int number) {
    const int earlier = caught_signal.exchange(number == SIGALRM ? caught_signal.load() : number);
    const int descriptor = signal_descriptor.load();
    if (number == SIGALRM || earlier || descriptor < 0) end_now(earlier ? earlier : number);
    alarm(seconds_to_close);
    if (write(descriptor, "", 1) != 1) end_now(number);
}

void copy_path(char* to, const std::string& path) {
    if (path.size() >= PATH_MAX) return;
    memcpy(to, path.c_str(), path.size() + 1);
}

}  // namespace

void CatchExitSignals() {
    struct sigaction action = {};
    action.sa_handler = handle;
    sigfillset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : exit_signals) sigaction(number, &action, nullptr);
    sigaction(SIGALRM, &action, nullptr);
}

void SetChildToEnd(pid_t child) { child_to_end = child; }

void SetFileToRemove(const std::string& file, const std::string& folder) {
    copy_path(file_to_remove, file);
    copy_path(folder_to_remove, folder);
}

void UndoAtExit() {
    const pid_t child = child_to_end.load();
    undo();
    if (child > 0) waitpid(child, nullptr, 0);
}

void SetSignalDescriptor(int descriptor) { signal_descriptor = descriptor; }

int CaughtSignal() { return caught_signal; }
