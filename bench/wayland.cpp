// Opening a level in a Wayland session, compared with the same on X: in sway, whose screen is a
// window of the X server, and as that server's own windows. The same program opens the same folders
// with real keys, in turn. The wall time is that from the keys to the level's first row on the
// server's screen. sway shows it a frame later, when the program has already done more, so the
// processor times are compared until the program is idle again. What sway adds by itself is
// measured with a program that only shows a window.
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/display_main.h"
#include "bench/driven_menu.h"
#include "bench/harness.h"
#include "bench/started_program.h"
#include "bench/test_folder.h"
#include "support/waiting.h"
#include "support/x_input.h"
#include "wayland/compositor.h"
#include "wayland/wayland_scene.h"

#include <X11/Xlib.h>  // its macros come after GoogleTest

namespace {

const int rounds = 9;
const int screen_side = 800;  // sway's, in the upper left corner
const double limit = 1.2;

struct Session {
    std::string name;
    Display* display;
    std::vector<std::string> environment;
    bench::Times times, warm_up;
    std::vector<double> until_rest;
};

Session x_session(Display* screen) {
    return {"on X", screen, {"-u", "WAYLAND_DISPLAY"}, {}, {}, {}};
}

Session sway_session(const test::Compositor& sway) {
    Session session = {"in sway", nullptr, {}, {}, {}, {}};
    std::string server;
    for (const auto& [name, value] : sway.environment()) {
        if (name == "DISPLAY") server = value;
        session.environment.push_back(name + "=" + value);
    }
    test::wait_for([&] { return (session.display = XOpenDisplay(server.c_str())) != nullptr; });
    if (!session.display) throw std::runtime_error("sway has no Xwayland");
    return session;
}

// Comes before the one that is measured.
void add_small_folder(const std::string& holder) {
    const std::string folder = holder + "/a few";
    std::filesystem::create_directories(folder + "/inner");
    for (const char* name : {"/note.txt", "/photo.jpg", "/page.pdf", "/code.c"}) {
        std::ofstream(folder + name) << "text\n";
    }
}

void open(Display* screen, const bench::TestFolder& folder, Session* session, bool counts) {
    std::vector<std::string> command = {"/usr/bin/env"};
    command.insert(command.end(), session->environment.begin(), session->environment.end());
    command.insert(command.end(), {DELVIO, "menu", "--at", "50,50", folder.holder()});
    bench::DrivenMenu menu(screen, session->display, command);
    menu.wait_for_levels(1);
    // The level of the holder and that of its first folder, to warm up.
    menu.time_level({"Down", "Right"}, &session->warm_up);
    menu.time_level({"Right"}, &session->warm_up);
    menu.press({"Left"});
    menu.wait_for_levels(2);
    std::vector<double> first;
    menu.time_level({"Down", "Right"}, counts ? &session->times : &session->warm_up,
                    counts ? &session->until_rest : &first);
}

void measure(Display* screen, const test::Compositor& sway, int entries) {
    const bench::TestFolder folder(entries);
    add_small_folder(folder.holder());
    std::vector<Session> sessions = {x_session(screen), sway_session(sway)};
    for (int round = 0; round <= rounds; round++) {
        for (Session& session : sessions) open(screen, folder, &session, round > 0);
    }
    for (const Session& session : sessions) {
        bench::print_times("opening a level, to its first row", entries, session.name,
                           session.times);
    }
    const auto ratio = [](const std::vector<double>& sway, const std::vector<double>& x) {
        return bench::median(sway) / bench::median(x);
    };
    const Session &on_x = sessions[0], &in_sway = sessions[1];
    const std::string what = "a level in sway to the same on X, ";
    bench::note(what + "processor time", entries, ratio(in_sway.until_rest, on_x.until_rest),
                "times", limit);
    bench::note(what + "wall time", entries, ratio(in_sway.times.wall, on_x.times.wall), "times");
    XCloseDisplay(sessions[1].display);
}

// From the start of a program with one bare window to its first pixel.
void show_bare_window(Display* screen, int height, Session* session) {
    const int x = 150, y = 150;  // inside the window
    std::vector<std::string> command = {"/usr/bin/env"};
    command.insert(command.end(), session->environment.begin(), session->environment.end());
    command.insert(command.end(), {BARE_X_WINDOW, std::to_string(height)});
    const unsigned long empty = bench::pixel(screen, x, y);
    const double begin = bench::now();
    {
        bench::StartedProgram program(command);
        program.wait_for_pixel(screen, x, y, empty);
        session->times.wall.push_back(bench::now() - begin);
        session->times.processor.push_back(program.usage().processor);
    }
    while (bench::pixel(screen, x, y) != empty) usleep(1000);
}

void measure_bare_window(Display* screen, const test::Compositor& sway, int height) {
    std::vector<Session> sessions = {x_session(screen), sway_session(sway)};
    for (int round = 0; round < 3 * rounds; round++) {
        for (Session& session : sessions) show_bare_window(screen, height, &session);
    }
    for (const Session& session : sessions) {
        bench::print_times("a bare X window of this height, to its first pixel", height,
                           session.name, session.times);
    }
    XCloseDisplay(sessions[1].display);
}

void compare(Display* screen) {
    test::Compositor sway;
    if (!sway.start_sway(1)) throw std::runtime_error("sway did not start: " + sway.log());
    if (!test::wait_for([] { return test::place_side_by_side(1, screen_side); })) {
        throw std::runtime_error("sway shows no screen");
    }
    // sway gets the keys while the pointer is over its window.
    test::XInput().move(screen_side / 2, screen_side - 20);
    for (const int height : {200, screen_side - 100}) measure_bare_window(screen, sway, height);
    for (const int entries : {10, 1000, 10000}) measure(screen, sway, entries);
}

}  // namespace

int main() { return bench::run_on_display(compare); }
