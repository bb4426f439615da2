// `delvio menu` with the resident host, from the start of the process until its menu is mapped,
// compared with the smallest X program and with another menu; and what the idle host uses.
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/display_main.h"
#include "bench/harness.h"
#include "bench/test_folder.h"

namespace fs = std::filesystem;

namespace {

const int rounds = 31, first_rounds = 15;
const double seconds_idle = 60, seconds_to_settle = 5, patience = 60;
const double most_of_bare = 10, most_of_other = 0.5, most_of_other_first = 2.2, most_megabytes = 45;

using Command = std::vector<std::string>;

pid_t start(const Command& command) {
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const pid_t process = fork();
    if (process != 0) return process;
    const int nothing = open("/dev/null", O_RDWR);
    for (const int standard : {0, 1, 2}) dup2(nothing, standard);
    execvp(words[0], words.data());
    _exit(127);
}

// Waits until a window of some size is mapped, or unmapped.
void wait_for_window(Display* display, int type) {
    const double end = bench::now() + patience;
    for (;;) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            XWindowAttributes window = {};
            if (event.type != type) continue;
            if (type != MapNotify) return;
            XGetWindowAttributes(display, event.xmap.window, &window);
            if (window.c_class == InputOutput && window.width > 20) return;
        }
        pollfd waiting = {ConnectionNumber(display), POLLIN, 0};
        if (bench::now() > end) throw std::runtime_error("a program shows no window");
        poll(&waiting, 1, 100);
    }
}

double seconds_to_window(Display* display, const Command& command) {
    XSync(display, True);
    const double begin = bench::now();
    const pid_t process = start(command);
    wait_for_window(display, MapNotify);
    const double seconds = bench::now() - begin;
    usleep(50000);
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
    wait_for_window(display, UnmapNotify);
    return seconds;
}

bool is_installed(const std::string& program) {
    const std::string path = bench::variable("PATH");
    for (size_t begin = 0; begin <= path.size();) {
        const size_t end = std::min(path.find(':', begin), path.size());
        if (access((path.substr(begin, end - begin) + "/" + program).c_str(), X_OK) == 0)
            return true;
        begin = end + 1;
    }
    return false;
}

void race(Display* display, const Command& menu) {
    std::vector<std::pair<std::string, Command>> programs = {{"bare X window", {BARE_X_WINDOW}},
                                                             {"delvio menu", menu}};
    if (is_installed("rofi")) programs.push_back({"rofi", {"rofi", "-dmenu"}});
    std::vector<bench::Times> times(programs.size());
    for (int round = 0; round <= rounds; round++) {
        for (size_t i = 0; i < programs.size(); i++) {
            const double seconds = seconds_to_window(display, programs[i].second);
            if (round) times[i].wall.push_back(seconds);
        }
    }
    std::vector<double> medians;
    for (size_t i = 0; i < programs.size(); i++) {
        times[i].processor = times[i].wall;  // the menu's work is done by another process
        bench::print_times("resident: start to the window", 0, programs[i].first, times[i]);
        medians.push_back(bench::median(times[i].wall));
    }
    bench::check("delvio menu by the resident host to a bare X window", medians[1] / medians[0],
                 most_of_bare);
    if (medians.size() > 2) {
        bench::check("delvio menu by the resident host to rofi", medians[1] / medians[2],
                     most_of_other);
    }
}

// Empty for a process that ends just now.
std::string text_of(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

pid_t host_process() {
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const auto process =
            static_cast<pid_t>(strtol(entry.path().filename().c_str(), nullptr, 10));
        const std::string all = text_of(entry.path() / "cmdline");
        const std::string environment = text_of(entry.path() / "environ");
        const std::string own = "XDG_RUNTIME_DIR=" + bench::variable("XDG_RUNTIME_DIR");
        const bool is_host = process > 0 && all.find("--resident-host") != std::string::npos;
        if (is_host && environment.find(own) != std::string::npos) return process;
    }
    throw std::runtime_error("there is no resident host");
}

double megabytes(pid_t process) {
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
        double kilobytes = 0;
        if (word == "Pss:" && rollup >> kilobytes) return kilobytes / 1024;
    }
    return 0;
}

double switches(pid_t process) {
    double sum = 0;
    for (const auto& thread :
         fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        std::ifstream status(thread.path() / "status");
        for (std::string word; status >> word;) {
            double count = 0;
            if (word.ends_with("_ctxt_switches:") && status >> count) sum += count;
        }
    }
    return sum;
}

// The first menu of a session, which starts the host, in turn with rofi.
void race_first_menus(Display* display, const Command& menu) {
    bench::Times first, rofi;
    for (int round = 0; round < first_rounds; round++) {
        const pid_t host = host_process();
        kill(host, SIGTERM);
        while (kill(host, 0) == 0) usleep(1000);
        first.wall.push_back(seconds_to_window(display, menu));
        rofi.wall.push_back(seconds_to_window(display, {"rofi", "-dmenu"}));
    }
    first.processor = first.wall, rofi.processor = rofi.wall;
    bench::print_times("no host yet: start to the window", 0, "delvio menu", first);
    bench::print_times("no host yet: start to the window", 0, "rofi", rofi);
    bench::check("the first delvio menu of a session to rofi",
                 bench::median(first.wall) / bench::median(rofi.wall), most_of_other_first);
}

// A host whose menu has closed finishes what that menu has left, and is idle then. At first it
// gives back what its start has needed, so it is measured after one menu more.
void measure_idle(Display* display, const Command& menu) {
    const pid_t host = host_process();
    usleep(static_cast<useconds_t>(seconds_to_settle * 1e6));
    seconds_to_window(display, menu);
    usleep(static_cast<useconds_t>(seconds_to_settle * 1e6));
    bench::note("memory of the idle resident host, PSS", 0, megabytes(host), "MB", most_megabytes);
    const double before = switches(host);
    usleep(static_cast<useconds_t>(seconds_idle * 1e6));
    // A limit of 0 would be none.
    bench::note("wake-ups of the idle resident host in a minute", 0, switches(host) - before,
                "wake-ups", 0.5);
}

void measure(Display* display) {
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });  // windows may be gone when asked
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    const bench::TestFolder folder(10);
    const Command menu = {DELVIO_CLIENT, "menu", "--at", "100,100", folder.path()};
    race(display, menu);
    if (is_installed("rofi")) race_first_menus(display, menu);
    measure_idle(display, menu);
}

}  // namespace

int main() { return bench::run_on_display(measure); }
