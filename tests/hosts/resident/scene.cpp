#include "hosts/resident/scene.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace test {

namespace {

constexpr int least_width = 20;  // of a menu; the toolkit has smaller windows

std::string new_session() {
    static int number = 0;
    return "test-" + std::to_string(getpid()) + "-" + std::to_string(++number);
}

bool holds_variable(pid_t process, const std::string& variable) {
    const std::string all = '\0' + read_file("/proc/" + std::to_string(process) + "/environ");
    return all.find('\0' + variable + '\0') != std::string::npos;
}

bool has_argument(pid_t process, const std::string& argument) {
    const std::string words = read_file("/proc/" + std::to_string(process) + "/cmdline");
    return words.find('\0' + argument + '\0') != std::string::npos;
}

int ignore_error(Display*, XErrorEvent*) { return 0; }

}  // namespace

Screen::Screen(const char* name) : display_(XOpenDisplay(name)) {
    if (!display_) abort();
    // A window may disappear between its listing and the query about it.
    XSetErrorHandler(ignore_error);
}

Screen::~Screen() { XCloseDisplay(display_); }

bool Screen::is_grabbed() const {
    const Window root = DefaultRootWindow(display_);
    const int pointer = XGrabPointer(display_, root, False, 0, GrabModeAsync, GrabModeAsync, None,
                                     None, CurrentTime);
    if (pointer == GrabSuccess) XUngrabPointer(display_, CurrentTime);
    const int keys =
        XGrabKeyboard(display_, root, False, GrabModeAsync, GrabModeAsync, CurrentTime);
    if (keys == GrabSuccess) XUngrabKeyboard(display_, CurrentTime);
    XSync(display_, False);
    return pointer == AlreadyGrabbed && keys == AlreadyGrabbed;
}

ShownArea Screen::open_menu() const {
    ShownArea topmost;
    Window ignored, *windows = nullptr;
    unsigned count = 0;
    XQueryTree(display_, DefaultRootWindow(display_), &ignored, &ignored, &windows, &count);
    for (unsigned i = 0; i < count; ++i) {
        XWindowAttributes window;
        if (!XGetWindowAttributes(display_, windows[i], &window)) continue;
        const bool is_menu = window.override_redirect && window.map_state == IsViewable &&
                             window.width > least_width;
        if (is_menu) topmost = {window.x, window.y, window.width, window.height};
    }
    if (windows) XFree(windows);
    return topmost.width > 0 && is_grabbed() ? topmost : ShownArea();
}

bool Screen::wait_until_open() const {
    return wait_for([this] { return open_menu().width > 0; });
}

bool Screen::wait_until_closed() const {
    return wait_for([this] { return open_menu().width == 0 && !is_grabbed(); });
}

OwnServer::OwnServer() {
    int ends[2];
    if (pipe(ends) != 0) abort();
    process_ = fork();
    if (process_ == 0) {
        const std::string out = std::to_string(ends[1]);
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDERR_FILENO);
        execlp("Xvfb", "Xvfb", "-displayfd", out.c_str(), "-screen", "0", "800x600x24", "-nolisten",
               "tcp", "-noreset", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    char number[16] = "";
    size_t size = 0;
    while (size + 1 < sizeof number && read(ends[0], number + size, 1) == 1) {
        if (number[size] == '\n') break;
        ++size;
    }
    close(ends[0]);
    name_ = ":" + std::string(number, size);
}

void OwnServer::end() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

ResidentScene::ResidentScene() : session(new_session()), top(folder.folder("top")) {
    fs::remove_all(std::string(getenv("XDG_RUNTIME_DIR")) + "/delvio");
    for (const char* name : {"top/a.txt", "top/b.txt", "top/c.txt"}) folder.file(name, "text");
}

ResidentScene::~ResidentScene() {
    for (const pid_t process : hosts()) kill(process, SIGKILL);
    EXPECT_TRUE(wait_for([this] { return hosts().empty(); }));
    EXPECT_TRUE(screen.wait_until_closed());
}

Changes ResidentScene::with(const Changes& more) const {
    Changes all = {{"DELVIO_RESIDENT", "1"}, {"XDG_SESSION_ID", session}};
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

RunningCommand ResidentScene::call(const Words& words, const Changes& more) const {
    return RunningCommand(words, with(more));
}

RunningCommand ResidentScene::call_at(int x, int y, const Changes& more) const {
    return call({"menu", "--at", std::to_string(x) + "," + std::to_string(y), top}, more);
}

Outcome ResidentScene::show_and_close(const Changes& more) {
    RunningCommand command = call_at(100, 100, more);
    EXPECT_TRUE(screen.wait_until_open());
    input.key("Escape");
    const Outcome outcome = command.finish();
    EXPECT_TRUE(screen.wait_until_closed());
    return outcome;
}

// 0 for a process that has ended.
static pid_t parent_of(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        if (pid_t parent = 0; word == "PPid:" && status >> parent) return parent;
    }
    return 0;
}

std::vector<pid_t> ResidentScene::programs(const std::string& argument) const {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const pid_t process = atoi(entry.path().filename().c_str());
        if (process <= 0 || !has_argument(process, argument)) continue;
        if (holds_variable(process, "XDG_SESSION_ID=" + session)) found.push_back(process);
    }
    return found;
}

std::vector<pid_t> ResidentScene::hosts() const {
    std::vector<pid_t> found = programs("--resident-host");
    // A program that a host starts looks like the host until it runs.
    std::erase_if(found, [parents = found](pid_t process) {
        return std::ranges::find(parents, parent_of(process)) != parents.end();
    });
    return found;
}

pid_t ResidentScene::host() const {
    const std::vector<pid_t> all = hosts();
    // A signal to process 0 would go to the whole test run.
    if (all.size() != 1) throw std::runtime_error(std::to_string(all.size()) + " hosts");
    return all.front();
}

bool ResidentScene::wait_for_one_host() const {
    return wait_for([this] { return hosts().size() == 1; });
}

Words ResidentScene::meeting_files(const std::string& ending) const {
    Words found;
    std::error_code error;
    const fs::path place = std::string(getenv("XDG_RUNTIME_DIR")) + "/delvio";
    for (const auto& entry : fs::directory_iterator(place, error)) {
        if (entry.path().string().ends_with(ending)) found.push_back(entry.path());
    }
    return found;
}

std::string ResidentScene::log() const {
    std::string text;
    for (const std::string& file : meeting_files(".log")) text += read_file(file);
    return text;
}

}  // namespace test
