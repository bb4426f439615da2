#include "command/exit_signals.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <iterator>

// Everything that a signal handler touches is plain memory and atomics.
namespace {

std::atomic<pid_t> child_to_end{0};
std::atomic<int> signal_descriptor{-1};
std::atomic<int> caught_signal{0};
std::atomic<int> acted_signal{0};  // a signal of another process, which counts as caught
std::atomic<bool> catches{false};
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

bool is_caught(int number) {
    return std::find(std::begin(exit_signals), std::end(exit_signals), number) !=
           std::end(exit_signals);
}

// Works like signal(), but our handler also holds back all other signals while it runs.
sighandler_t set_handler(int number, sighandler_t handler) {
    struct sigaction action = {}, before = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    if (handler == handle) sigfillset(&action.sa_mask);
    return sigaction(number, &action, &before) == 0 ? before.sa_handler : SIG_ERR;
}

void copy_path(char* to, const std::string& path) {
    if (path.size() >= PATH_MAX) return;
    memcpy(to, path.c_str(), path.size() + 1);
}

}  // namespace

// The toolkit's display backend is loaded late and, while it starts, installs handlers that abort:
// a signal would then abort the command. This function replaces signal() in the whole program and
// ignores such calls.
extern "C" __attribute__((visibility("default"))) sighandler_t signal(int number,
                                                                      sighandler_t wanted) {
    if (catches && is_caught(number)) return handle;
    return set_handler(number, wanted);
}

void catch_exit_signals() {
    for (const int number : exit_signals) set_handler(number, handle);
    set_handler(SIGALRM, handle);
    catches = true;
}

void set_child_to_end(pid_t child) { child_to_end = child; }

void set_file_to_remove(const std::string& file, const std::string& folder) {
    copy_path(file_to_remove, file);
    copy_path(folder_to_remove, folder);
}

void end_child_and_remove_file() {
    const pid_t child = child_to_end.load();
    undo();
    if (child > 0) waitpid(child, nullptr, 0);
}

void set_signal_descriptor(int descriptor) { signal_descriptor = descriptor; }

int signal_caught() { return caught_signal; }

void act_on_signal(int number) {
    int none = 0;
    if (!caught_signal.compare_exchange_strong(none, number)) return;
    acted_signal = number;
    const int descriptor = signal_descriptor.load();
    // A full pipe has woken the reader already.
    if (descriptor >= 0 && write(descriptor, "", 1) != 1) return;
}

// A signal of this process's own stays caught.
void forget_acted_signal() {
    int acted = acted_signal.exchange(0);
    if (acted) caught_signal.compare_exchange_strong(acted, 0);
}

void outlive_broken_pipes() {
    set_handler(SIGPIPE, [](int) {});
}
