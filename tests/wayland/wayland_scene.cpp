#include "wayland/wayland_scene.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>

namespace test {

namespace {

constexpr int shadow = 22;  // around a level, within its window
constexpr unsigned long menu_color = 0xfcfcfd;

// A window may disappear between its listing and the question about it.
int ignore_error(Display*, XErrorEvent*) { return 0; }

Display* open_session(const Changes& environment) {
    std::string name;
    for (const auto& [variable, value] : environment) {
        if (variable == "DISPLAY") name = value;
        if (variable == "XAUTHORITY") setenv("XAUTHORITY", value.c_str(), 1);
    }
    Display* display = XOpenDisplay(name.c_str());
    unsetenv("XAUTHORITY");
    return display;
}

bool is_menu(Display* display, Window window, XWindowAttributes* attributes) {
    if (!XGetWindowAttributes(display, window, attributes)) return false;
    if (!attributes->override_redirect || attributes->map_state != IsViewable) return false;
    XTextProperty name = {};
    XGetWMName(display, window, &name);
    const char* text = reinterpret_cast<const char*>(name.value);
    const bool named = text && std::string(text, name.nitems) == "Menu";
    if (name.value) XFree(name.value);
    return named;
}

}  // namespace

bool place_side_by_side(size_t count, int width) {
    Display* display = XOpenDisplay(nullptr);
    Window ignored, *windows = nullptr;
    unsigned number = 0;
    XQueryTree(display, DefaultRootWindow(display), &ignored, &ignored, &windows, &number);
    std::vector<Window> screens;
    for (unsigned i = 0; i < number; i++) {
        XWindowAttributes window;
        const bool shown =
            XGetWindowAttributes(display, windows[i], &window) && window.map_state == IsViewable;
        if (shown && window.width == width) screens.push_back(windows[i]);
    }
    if (windows) XFree(windows);
    std::sort(screens.begin(), screens.end());
    const bool complete = screens.size() == count;
    for (size_t i = 0; complete && i < count; i++) {
        XMoveWindow(display, screens[i], static_cast<int>(i) * width, 0);
    }
    XSync(display, False);
    XCloseDisplay(display);
    return complete;
}

std::unique_ptr<Compositor> WaylandScene::compositor;

void WaylandScene::SetUp() {
    ASSERT_NE(compositor, nullptr);
    XSetErrorHandler(ignore_error);
    ASSERT_TRUE(wait_for([this] {
        return (session_ = open_session(compositor->environment())) != nullptr;
    })) << compositor->log();
}

void WaylandScene::TearDown() {
    input.let_go();
    command_.reset();
    if (session_) XCloseDisplay(session_);
}

void WaylandScene::rest_at(int x, int y) {
    input.move(x + 1, y);
    input.move(x, y);
}

bool WaylandScene::open_menu(const std::vector<std::string>& words) {
    std::vector<std::string> arguments = {"menu"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    command_ = std::make_unique<RunningCommand>(arguments, compositor->environment());
    const bool is_open = wait_for([this] {
        const std::vector<Level> all = levels();
        return all.size() == 1 && shows_menu_at(all[0]);
    });
    if (!is_open) tell_what_is_there();
    return is_open;
}

// Says whether the menu is missing or the compositor does not show it.
void WaylandScene::tell_what_is_there() {
    const std::vector<Level> all = levels();
    fprintf(stderr, "%zu levels, the command %s\n", all.size(),
            is_running() ? "runs" : "has ended");
    for (const Level& level : all) {
        fprintf(stderr, "a level of %d x %d at %d, %d, %s\n", level.width, level.height, level.x,
                level.y, shows_menu_at(level) ? "shown" : "not shown");
    }
    rest_at(5, 5);
    const bool shown = wait_for([&] { return !all.empty() && shows_menu_at(all[0]); });
    fprintf(stderr, "after a motion it is %s; the compositor says:\n%s\n",
            shown ? "shown" : "not shown", compositor->log().c_str());
}

bool WaylandScene::is_running() const {
    siginfo_t ended = {};
    waitid(P_PID, command_->process(), &ended, WEXITED | WNOHANG | WNOWAIT);
    return ended.si_pid == 0;
}

Outcome WaylandScene::finish() { return command_->finish(); }

std::vector<Level> WaylandScene::levels() const {
    Window ignored, *windows = nullptr;
    unsigned count = 0;
    std::vector<Level> found;
    XQueryTree(session_, DefaultRootWindow(session_), &ignored, &ignored, &windows, &count);
    for (unsigned i = 0; i < count; i++) {
        XWindowAttributes window;
        if (!is_menu(session_, windows[i], &window)) continue;
        found.push_back({window.x + shadow, window.y + shadow, window.width - 2 * shadow,
                         window.height - 2 * shadow});
    }
    if (windows) XFree(windows);
    return found;
}

bool WaylandScene::wait_for_levels(size_t count) const {
    return wait_for([&] { return levels().size() == count; });
}

void WaylandScene::point_at(const Level& level, int x, int y) {
    rest_at(static_cast<int>((level.x + x) * scale_), static_cast<int>((level.y + y) * scale_));
}

bool WaylandScene::highlight(size_t level, int x, int y) {
    // The level is drawn, and stands still, before the hand goes there.
    Level at = {};
    const bool stands = wait_for([&] {
        const std::vector<Level> all = levels();
        if (all.size() <= level) return false;
        const Level before = at;
        at = all[level];
        return at.x == before.x && at.y == before.y && shows_menu_at(at);
    });
    if (!stands) return false;
    point_at(at, x, y);
    const int edge = static_cast<int>((at.x + at.width - 12) * scale_);
    return wait_for(
        [&] { return input.pixel(edge, static_cast<int>((at.y + y) * scale_)) != menu_color; });
}

bool WaylandScene::shows_menu_at(const Level& level) {
    const int middle = level.x + level.width / 2, inside = level.y + 3;
    return input.pixel(static_cast<int>(middle * scale_), static_cast<int>(inside * scale_)) ==
           menu_color;
}

bool WaylandScene::keys_reach_session() {
    const auto is_any_key_held = [this] {
        char keys[32] = {};
        XQueryKeymap(session_, keys);
        for (const char byte : keys) {
            if (byte) return true;
        }
        return false;
    };
    input.key_down("Control_L");
    const bool held = wait_for(is_any_key_held);
    input.key_up("Control_L");
    return held && wait_for([&] { return !is_any_key_held(); });
}

}  // namespace test
