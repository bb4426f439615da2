#include "file_steps/lone_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace operations {

namespace {

constexpr unsigned longest_work = 600;  // seconds

// Closes the parent's files, which hold its locks, and resets its signal handlers, so that nobody
// waits for this process without knowing.
void let_go_of_everything() {
    setsid();
    for (int number = 1; number < NSIG; number++) signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (chdir("/") != 0) _exit(1);
    close_range(0, ~0u, 0);
    for (int number = 0; number < 3; number++) (void)open("/dev/null", O_RDWR);
}

// The part of the first child, for which the caller waits. Does not return.
void work_in_second_child(const std::function<void()>& work) {
    // The second child may get its first turn late, so the first one lets go.
    let_go_of_everything();
    // The second child has no parent that would have to wait for it.
    if (fork() == 0) {
        // This works only where a process can give up waiting for the disk.
        alarm(longest_work);
        work();
    }
    _exit(0);
}

}  // namespace

void run_alone(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) work_in_second_child(work);
    if (child > 0) waitpid(child, nullptr, 0);
}

}  // namespace operations
