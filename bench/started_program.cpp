#include "bench/started_program.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "bench/harness.h"

namespace bench {

namespace {

const double patience = 60;

std::vector<char*> arguments(const std::vector<std::string>& command) {
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    return words;
}

// How often a thread has gone to sleep voluntarily.
long sleeps(const std::filesystem::path& thread) {
    std::ifstream status(thread / "status");
    for (std::string word; status >> word;) {
        long count = 0;
        if (word == "voluntary_ctxt_switches:" && status >> count) return count;
    }
    return 0;
}

}  // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& command) {
    const std::vector<char*> words = arguments(command);
    process_ = fork();
    if (process_ < 0) throw std::runtime_error("cannot start " + command[0]);
    if (process_ > 0) return;
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);  // the toolkit prints messages
    execv(words[0], words.data());
    _exit(127);
}

StartedProgram::~StartedProgram() { end(); }

void StartedProgram::end() {
    if (!process_) return;
    kill(process_, SIGKILL);  // the toolkit catches the signals that only ask
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

void StartedProgram::wait_for_pixel(_XDisplay* display, int x, int y, unsigned long before) {
    const double end = now() + patience;
    while (pixel(display, x, y) == before) {
        siginfo_t ended = {};
        waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT);
        if (ended.si_pid || now() > end) throw std::runtime_error("a program shows no window");
        usleep(200);
    }
}

void StartedProgram::wait_for_rest(double seconds) {
    double before = -1, spent = usage().processor;
    while (spent != before) {
        usleep(static_cast<useconds_t>(seconds * 1e6));
        before = std::exchange(spent, usage().processor);
    }
}

Usage StartedProgram::usage() const {
    Usage usage;
    clockid_t clock;
    timespec spent = {};
    if (clock_getcpuclockid(process_, &clock) || clock_gettime(clock, &spent)) {
        throw std::runtime_error("a program has ended");
    }
    usage.processor = static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) * 1e-9;
    const std::string threads = "/proc/" + std::to_string(process_) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(threads)) {
        usage.wake_ups += sleeps(thread.path());
    }
    return usage;
}

unsigned long pixel(_XDisplay* display, int x, int y) {
    XImage* image = XGetImage(display, DefaultRootWindow(display), x, y, 1, 1, AllPlanes, ZPixmap);
    if (!image) throw std::runtime_error("the screen cannot be read");
    const unsigned long color = XGetPixel(image, 0, 0);
    XDestroyImage(image);
    return color;
}

}  // namespace bench
