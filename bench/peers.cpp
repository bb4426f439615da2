// Opening a level of folders in Delvio's menu, in the folder menu of KDE's file managers and in the
// directory menu of LXQt's panel: the same folders, on the same screen, in turn. Each program runs
// as itself and gets real keys; the time is that from the keys to the level's first row on the
// screen.
//
// With DELVIO_PEERS_ROOT the other programs run in that root of a system.
#include <X11/Xlib.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/display_main.h"
#include "bench/driven_menu.h"
#include "bench/harness.h"

namespace {

namespace fs = std::filesystem;
using Keys = std::vector<std::string>;

const int rounds = 7;
const double kde_limit = 0.4;
const std::vector<int> sizes = {10, 1000, 10000};
const Keys into = {"Right"}, next = {"Down", "Right"}, back = {"Left"};

// The folders to show, also as the other programs see them. The first is there to be opened before
// anything is measured.
class Folders {
  public:
    explicit Folders(const std::string& root) {
        std::string pattern = root.empty() ? fs::temp_directory_path().string() : root + "/tmp";
        pattern += "/delvio-peers.XXXXXX";
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder " + pattern);
        outside_ = pattern;
        inside_ = pattern.substr(root.size());
        make("home/1-few", 5);
        for (size_t i = 0; i < sizes.size(); i++) {
            make("home/" + std::to_string(i + 2) + "-many", sizes[i]);
        }
        fs::create_directory(outside_ / "config");
    }
    ~Folders() {
        std::error_code ignored;
        fs::remove_all(outside_, ignored);
    }
    Folders(const Folders&) = delete;
    Folders& operator=(const Folders&) = delete;

    const fs::path& inside() const { return inside_; }
    const fs::path& outside() const { return outside_; }

  private:
    void make(const std::string& name, int count) const {
        for (int number = 0; number < count; number++) {
            fs::create_directories(outside_ / name / ("Folder " + std::to_string(number)));
        }
    }
    fs::path inside_, outside_;
};

struct Program {
    std::string name;
    std::vector<std::string> command;
    // A panel is clicked; the others show their menu at once.
    bool is_panel;
    // The keys to each further level until that of the folders, and those to the first of these.
    std::vector<Keys> way;
    Keys first;
    std::vector<bench::Times> times = std::vector<bench::Times>(sizes.size());
};

std::vector<std::string> peer_command(const Folders& folders,
                                      const std::vector<std::string>& words) {
    const std::string folder = folders.inside().string(),
                      root = bench::variable("DELVIO_PEERS_ROOT");
    std::vector<std::string> command;
    if (!root.empty()) command = {"/usr/sbin/chroot", root};
    command.insert(command.end(), {"/usr/bin/env", "HOME=" + folder + "/home",
                                   "XDG_CONFIG_HOME=" + folder + "/config",
                                   "XDG_RUNTIME_DIR=" + folder + "/config"});
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

Program delvio(const Folders& folders) {
    const std::string home = folders.outside() / "home";
    return {"Delvio", {DELVIO, "menu", "--at", "100,100", home}, false, {next}, into};
}

// "Copy To", "Home Folder", and its first folder below "Copy Here".
Program kde(const Folders& folders) {
    const std::string program = bench::variable("DELVIO_KDE_MENU");
    if (program.empty()) throw std::runtime_error("start it by script/bench --peers");
    const std::string file = folders.inside() / "file";
    return {"KDE, \"Copy To\"", peer_command(folders, {program, file}), false, {next, into}, next};
}

// "Open", "Open in Terminal", and the first folder below them.
Program lxqt(const Folders& folders) {
    const fs::path config = folders.outside() / "config/lxqt";
    fs::create_directory(config);
    std::ofstream(config / "lxqt.conf") << "[General]\nicon_theme=breeze\n";
    std::ofstream(config / "panel.conf")
        << "panels=panel1\n\n[panel1]\nalignment=-1\nplugins=directorymenu\nposition=Top\n\n"
        << "[directorymenu]\ntype=directorymenu\nalignment=Left\nbaseDirectory="
        << (folders.inside() / "home").string() << "\n";
    const Keys first = {"Down", "Down", "Down", "Right"};
    return {"LXQt, panel's directory menu", peer_command(folders, {"lxqt-panel"}), true, {}, first};
}

void run(Display* display, Program* program, bool counts) {
    bench::DrivenMenu menu(display, display, program->command);
    if (program->is_panel) {
        menu.wait_for_window();
        menu.click(16, 16);
    }
    size_t levels = 1;
    menu.wait_for_levels(levels);
    bench::Times warm_up;
    for (const Keys& keys : program->way) {
        menu.time_level(keys, &warm_up);
        levels++;
    }
    menu.time_level(program->first, &warm_up);
    for (bench::Times& times : program->times) {
        menu.press(back);
        menu.wait_for_levels(levels);
        menu.time_level(next, counts ? &times : &warm_up);
    }
}

// Only KDE's menu has a limit.
void compare(const Program& delvio, const Program& peer, double limit) {
    for (size_t i = 0; i < sizes.size(); i++) {
        const auto ratio = [&](std::vector<double> bench::Times::*clock) {
            return bench::median(delvio.times[i].*clock) / bench::median(peer.times[i].*clock);
        };
        const std::string what = "a level of folders to that of " + peer.name + ", ";
        bench::note(what + "processor time", sizes[i], ratio(&bench::Times::processor), "times",
                    limit);
        bench::note(what + "wall time", sizes[i], ratio(&bench::Times::wall), "times");
    }
}

void race(Display* display) {
    const Folders folders(bench::variable("DELVIO_PEERS_ROOT"));
    std::vector<Program> programs = {delvio(folders), kde(folders), lxqt(folders)};
    for (int round = 0; round <= rounds; round++) {
        for (Program& program : programs) run(display, &program, round > 0);
    }
    for (size_t i = 0; i < sizes.size(); i++) {
        for (const Program& program : programs) {
            bench::print_times("opening a level of folders, to its first row", sizes[i],
                               program.name, program.times[i]);
        }
    }
    compare(programs[0], programs[1], kde_limit);
    compare(programs[0], programs[2], 0);
}

}  // namespace

int main() { return bench::run_on_display(race); }
