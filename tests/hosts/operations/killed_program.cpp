#include "hosts/operations/killed_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

namespace test {

namespace {

double now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

pid_t start(const std::vector<std::string>& words, int errors) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.insert(arguments.begin(), const_cast<char*>("operate"));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    pid_t process = -1;
    EXPECT_EQ(posix_spawn(&process, OPERATE_PROGRAM, &actions, nullptr, arguments.data(), environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

// Waits until the program has ended, which closes the stream, or the time is over.
std::string read_until(int errors, double end) {
    std::string text;
    for (;;) {
        pollfd ready = {errors, POLLIN, 0};
        const double left = end > 0 ? end - now() : 3600;
        if (left <= 0) return text;
        const timespec wait = {
            static_cast<time_t>(left),
            static_cast<long>((left - static_cast<double>(static_cast<time_t>(left))) * 1e9)};
        if (ppoll(&ready, 1, &wait, nullptr) <= 0) return text;
        char buffer[4096];
        const ssize_t size = read(errors, buffer, sizeof buffer);
        if (size <= 0) return text;
        text.append(buffer, static_cast<size_t>(size));
    }
}

}  // namespace

Run run_operate(const std::vector<std::string>& words, double seconds) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const double begin = now();
    const pid_t process = start(words, ends[1]);
    close(ends[1]);
    Run run;
    run.complaints = read_until(ends[0], seconds > 0 ? begin + seconds : 0);
    if (seconds > 0) kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    run.seconds = now() - begin;
    // The last output of the program.
    run.complaints += read_until(ends[0], 0);
    close(ends[0]);
    run.was_killed = WIFSIGNALED(status);
    if (!run.was_killed) run.status = WEXITSTATUS(status);
    return run;
}

int kills_to_make(int usual) {
    const char* wanted = getenv("DELVIO_KILLS");
    return wanted ? atoi(wanted) : usual;
}

}  // namespace test
