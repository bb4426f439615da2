#include "offers/detached_program.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string& own_program() {
    static std::string& path = *new std::string("/proc/self/exe");
    return path;
}

// In a child of a program with threads: only system calls.
[[noreturn]] void become(const char* path, char* const* words) {
    setsid();
    if (fork() != 0) _exit(0);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = 0; stream <= STDERR_FILENO; stream++) dup2(nothing, stream);
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    if (chdir("/") == 0) execv(path, words);
    _exit(127);
}

}  // namespace

void set_own_program(const std::string& path) { own_program() = path; }

bool start_own_program(const std::vector<std::string>& arguments) {
    std::vector<char*> words = {const_cast<char*>("delvio")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) return false;
    if (child == 0) become(own_program().c_str(), words.data());
    waitpid(child, nullptr, 0);
    return true;
}
