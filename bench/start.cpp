// `delvio menu` from its start until its menu is on the screen, compared with programs that only
// show a window; and what the open menu uses while nobody touches it.
#include <X11/Xlib.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/display_main.h"
#include "bench/harness.h"
#include "bench/started_program.h"
#include "bench/test_folder.h"

namespace {

const int rounds = 15;
const double milliseconds_limit = 90;
const double idle_seconds = 10;
const int x = 180, y = 110;  // a point inside every program's window

// Seconds on each clock, from just before the start to the first pixel.
void start(Display* display, const std::vector<std::string>& command, bench::Times* times) {
    const unsigned long empty = bench::pixel(display, x, y);
    const double begin = bench::now();
    {
        bench::StartedProgram program(command);
        program.wait_for_pixel(display, x, y, empty);
        times->wall.push_back(bench::now() - begin);
        times->processor.push_back(program.usage().processor);
    }
    while (bench::pixel(display, x, y) != empty) usleep(1000);
}

void measure_idle(Display* display, const std::vector<std::string>& command) {
    const unsigned long empty = bench::pixel(display, x, y);
    bench::StartedProgram program(command);
    program.wait_for_pixel(display, x, y, empty);
    program.wait_for_rest();
    const bench::Usage before = program.usage();
    usleep(static_cast<useconds_t>(idle_seconds * 1e6));
    const bench::Usage after = program.usage();
    bench::note("wake-ups of an open menu in ten seconds", 0,
                static_cast<double>(after.wake_ups - before.wake_ups), "wake-ups", 5);
    bench::note("processor time of an open menu in ten seconds", 0,
                (after.processor - before.processor) * 1e3, "ms", idle_seconds);
}

struct Program {
    std::string name;
    std::vector<std::string> command;
    bench::Times times;
};

// A launcher with 25 lines, in the upper left corner of the screen.
Program rofi(const bench::TestFolder& folder) {
    const std::string input = folder.holder() + "/lines";
    std::ofstream lines(input);
    for (int line = 0; line < 25; line++) lines << "Menu row " << line << "\n";
    const std::string theme = "window { location: north west; anchor: north west; width: 400px; }";
    return {"rofi", {ROFI, "-dmenu", "-l", "25", "-input", input, "-theme-str", theme}, {}};
}

// Programs that are not installed are left out.
std::vector<Program> programs_to_start(const bench::TestFolder& folder,
                                       const std::vector<std::string>& menu) {
    std::vector<Program> programs = {{"delvio menu", menu, {}},
                                     {"bare GNUstep window", {BARE_GNUSTEP_WINDOW}, {}},
                                     {"bare X window", {BARE_X_WINDOW}, {}}};
    if (access(GTK_MENU, X_OK) == 0) programs.push_back({"GTK menu", {GTK_MENU}, {}});
    if (access(ROFI, X_OK) == 0) programs.push_back(rofi(folder));
    return programs;
}

void race(Display* display, std::vector<Program> programs) {
    for (int round = 0; round <= rounds; round++) {
        for (Program& program : programs) {
            bench::Times warm_up;
            start(display, program.command, round ? &program.times : &warm_up);
        }
    }
    for (const Program& program : programs) {
        bench::print_times("start to the first pixel", 0, program.name, program.times);
    }
    const double menu = bench::median(programs[0].times.processor);
    bench::note("processor time of delvio menu to its first pixel", 0, menu * 1e3, "ms",
                milliseconds_limit);
    bench::check("start of delvio menu to that of a bare GNUstep window, processor time",
                 menu / bench::median(programs[1].times.processor), 1);
}

void measure(Display* display) {
    const bench::TestFolder folder(10);
    const std::vector<std::string> menu = {DELVIO, "menu", "--at", "100,100", folder.path()};
    race(display, programs_to_start(folder, menu));
    measure_idle(display, menu);
}

}  // namespace

int main() { return bench::run_on_display(measure); }
