#include "hosts/command_runner.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {
namespace {

constexpr int milliseconds_to_finish = 120000;

void become(const std::vector<std::string>& arguments, const Changes& environment) {
    // One process does it all, unless a test asks for the resident host.
    setenv("DELVIO_RESIDENT", "0", 0);
    for (const auto& [name, value] : environment) {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> words = {const_cast<char*>("delvio")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const char* const copy = getenv("TEST_PROGRAM");
    execv(copy ? copy : DELVIO_PROGRAM, words.data());
    _exit(126);
}

// Appends the available output; false at the end of the stream.
bool read_some(int in, std::string* text) {
    char block[65536];
    const ssize_t count = read(in, block, sizeof block);
    if (count > 0) text->append(block, static_cast<size_t>(count));
    return count > 0;
}

// Reads both streams until all writers have closed them; false when that takes too long.
bool read_both(int out, int err, Outcome* outcome) {
    struct pollfd streams[] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
    std::string* const texts[] = {&outcome->out, &outcome->err};
    while (streams[0].fd >= 0 || streams[1].fd >= 0) {
        if (poll(streams, 2, milliseconds_to_finish) <= 0) return false;
        for (int i = 0; i < 2; ++i) {
            if (streams[i].revents && !read_some(streams[i].fd, texts[i])) streams[i].fd = -1;
        }
    }
    return true;
}

}  // namespace

RunningCommand::RunningCommand(const std::vector<std::string>& arguments,
                               const Changes& environment) {
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) abort();
    process_ = fork();
    if (process_ == 0) {
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        become(arguments, environment);
    }
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

RunningCommand::~RunningCommand() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(out_);
    close(err_);
}

void RunningCommand::send_signal(int number) const { kill(process_, number); }

Outcome RunningCommand::finish() {
    Outcome outcome;
    const bool ended = read_both(out_, err_, &outcome);
    if (!ended) kill(process_, SIGKILL);
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = 0;
    if (ended) outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

std::string output_of(const std::string& command) {
    FILE* in = popen((command + " 2>/dev/null").c_str(), "r");
    std::string text;
    for (int byte; (byte = fgetc(in)) != EOF;) text += static_cast<char>(byte);
    pclose(in);
    return text;
}

Outcome run_delvio(const std::vector<std::string>& arguments, const Changes& environment) {
    return RunningCommand(arguments, environment).finish();
}

}  // namespace test
