#include "wayland/compositor.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "support/temp_folder.h"
#include "support/waiting.h"

namespace fs = std::filesystem;

namespace test {

namespace {

constexpr const char* socket_name = "wayland-test";

// Mutter writes the session's key to Xwayland into a file of its run-time folder.
std::string find_authority(const std::string& folder) {
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        if (name.rfind(".mutter-Xwaylandauth", 0) == 0) return entry.path();
    }
    return {};
}

// The user that a compositor runs as when root runs the tests.
const passwd* other_user() { return geteuid() == 0 ? getpwnam("nobody") : nullptr; }

[[noreturn]] void become(const std::vector<std::string>& words, const Changes& variables,
                         const std::string& folder) {
    const int log = open((folder + "/log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    setpgid(0, 0);
    if (const passwd* user = other_user()) {
        if (setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0) _exit(125);
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    for (const auto& [name, value] : variables) {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
    if (chdir(folder.c_str()) != 0) _exit(125);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

Compositor::~Compositor() {
    if (process_ > 0) {
        kill(-process_, SIGTERM);
        for (int turn = 0; turn < 200 && waitpid(process_, nullptr, WNOHANG) == 0; turn++) {
            usleep(10000);
        }
        kill(-process_, SIGKILL);
        waitpid(process_, nullptr, WNOHANG);
    }
    std::error_code error;
    if (!folder_.empty()) fs::remove_all(folder_, error);
}

// The test's own temporary folder is closed to other users.
bool Compositor::prepare() {
    char name[] = "/tmp/delvio-compositor.XXXXXX";
    if (!mkdtemp(name)) return false;
    folder_ = name;
    const passwd* user = other_user();
    return !user || chown(folder_.c_str(), user->pw_uid, user->pw_gid) == 0;
}

void Compositor::run(const std::vector<std::string>& words, const Changes& variables) {
    Changes all = {
        {"HOME", folder_},      {"XDG_RUNTIME_DIR", folder_}, {"TMPDIR", folder_},
        {"TEMP", folder_},      {"XDG_CONFIG_HOME", ""},      {"XDG_DATA_HOME", ""},
        {"XDG_CACHE_HOME", ""}, {"WAYLAND_DISPLAY", ""},      {"DBUS_SESSION_BUS_ADDRESS", ""}};
    all.insert(all.end(), variables.begin(), variables.end());
    process_ = fork();
    if (process_ == 0) become(words, all, folder_);
}

std::string Compositor::log() const { return read_file(folder_ + "/log"); }

bool Compositor::start_sway(int outputs) {
    if (!prepare()) return false;
    std::ofstream configuration(folder_ + "/config");
    configuration << "xwayland enable\n"
                     "default_border none\n"
                     "focus_follows_mouse no\n"
                     "output * bg #204060 solid_color\n";
    for (int i = 0; i < outputs; i++) {
        configuration << "output X11-" << i + 1 << " mode --custom 800x800 position " << i * 800
                      << " 0\n";
    }
    configuration << "exec sh " << folder_ << "/begin\n";
    std::ofstream(folder_ + "/begin")
        << "cd " << folder_ << "\nxhost +si:localuser:root\n"
        << "echo $WAYLAND_DISPLAY $DISPLAY $SWAYSOCK >names.new && mv names.new names\n";
    configuration.close();
    run({"sway", "-c", folder_ + "/config"}, {{"WLR_BACKENDS", "x11"},
                                              {"WLR_RENDERER", "pixman"},
                                              {"WLR_X11_OUTPUTS", std::to_string(outputs)}});
    if (!wait_for([&] { return fs::exists(folder_ + "/names"); })) return false;
    std::ifstream names(folder_ + "/names");
    std::string socket, display, control;
    names >> socket >> display >> control;
    environment_ = {{"WAYLAND_DISPLAY", folder_ + "/" + socket},
                    {"DISPLAY", display},
                    {"SWAYSOCK", control},
                    {"XAUTHORITY", ""}};
    return true;
}

bool Compositor::tell_sway(const std::string& words) const {
    std::string socket;
    for (const auto& [name, value] : environment_) {
        if (name == "SWAYSOCK") socket = value;
    }
    const std::string command = "swaymsg -q -s " + socket + " '" + words + "'";
    // swaymsg itself gives up after three seconds, however busy the machine is.
    for (int attempt = 0; attempt < 20; attempt++) {
        if (system(command.c_str()) == 0) return true;
    }
    return false;
}

bool Compositor::start_mutter() {
    if (!prepare()) return false;
    run({"dbus-run-session", "--", "mutter", "--nested", "--wayland",
         std::string("--wayland-display=") + socket_name},
        {{"LIBGL_ALWAYS_SOFTWARE", "1"},
         {"GSETTINGS_BACKEND", "memory"},
         {"MUTTER_DEBUG_DUMMY_MODE_SPECS", "1280x800"}});
    std::smatch display;
    std::string text;
    const std::regex line("public X11 display (:[0-9]+)");
    if (!wait_for([&] { return std::regex_search(text = log(), display, line); })) return false;
    const std::string authority = find_authority(folder_);
    environment_ = {{"WAYLAND_DISPLAY", folder_ + "/" + socket_name},
                    {"DISPLAY", display[1]},
                    {"XAUTHORITY", authority}};
    return !authority.empty();
}

}  // namespace test
