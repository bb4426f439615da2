#include "gworkspace/file_manager.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "support/temp_folder.h"

namespace test {

namespace {

std::string variable(const char* name) {
    const char* value = getenv(name);
    return value ? value : "";
}

pid_t start(const Lines& command, const std::function<void()>& prepare) {
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prepare();
    execvp(words[0], words.data());
    _exit(127);
}

void redirect(const std::string& file) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(descriptor, STDOUT_FILENO);
    dup2(descriptor, STDERR_FILENO);
}

Lines lines_of(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string quoted_list(const Lines& strings) {
    std::string list;
    for (const std::string& string : strings)
        list += (list.empty() ? "\"" : ", \"") + string + "\"";
    return "(" + list + ")";
}

Lines command_for(const std::string& folder, bool with_delvio, const Lines& words) {
    Lines bundles = {GWORKSPACE_PROBE_BUNDLE};
    if (with_delvio) bundles.insert(bundles.begin(), DELVIO_GWORKSPACE_BUNDLE);
    Lines command = {"GWorkspace",
                     "-GSAppKitUserBundles",
                     quoted_list(bundles),
                     "-viewersinfo",
                     "({path = \"" + folder + "\"; key = viewer;})",
                     "-NoWarnOnQuit",
                     "YES"};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

}  // namespace

bool wait_until(const std::function<bool()>& condition, int seconds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

FileManager::FileManager(const std::string& folder, bool with_delvio, const Lines& words) {
    static int serial;
    const std::string base = variable("TEMP") + "/gw" + std::to_string(++serial);
    socket_ = base + ".probe";
    errors_ = base + ".messages";
    process_ = start(command_for(folder, with_delvio, words), [&] {
        setenv("DELVIO_TEST_PROBE", socket_.c_str(), 1);
        setenv("LD_PRELOAD", GWORKSPACE_PRELOADED, 1);
        redirect(errors_);
    });
    wait_until([&] { return ask("launched") == "yes" || !is_running(); });
    if (ask("launched") != "yes") {
        throw std::runtime_error("GWorkspace did not start: " + read_file(errors_));
    }
    ask("frame 180 80 900 600");  // clear of the main menu and the dock
    wait_until([&] { return static_cast<bool>(settled_area("bounds path")); });
}

FileManager::~FileManager() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    unlink(socket_.c_str());
}

bool FileManager::is_running() {
    int status = 0;
    if (process_ > 0 && waitpid(process_, &status, WNOHANG) == process_) {
        process_ = 0;
        end_ = WIFSIGNALED(status) ? "ended by signal " + std::to_string(WTERMSIG(status))
                                   : "ended with status " + std::to_string(WEXITSTATUS(status));
    }
    return process_ > 0;
}

std::string FileManager::account() { return is_running() ? "" : end_ + ": " + read_file(errors_); }

std::string FileManager::ask(const std::string& question) const {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", socket_.c_str());
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // GWorkspace may be busy or gone.
    const timeval patience = {60, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::string answer;
    if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        send(connection, question.data(), question.size(), MSG_NOSIGNAL);
        char buffer[4096];
        const auto next = [&] { return read(connection, buffer, sizeof buffer); };
        // The time limit lets a stop of this program end the call.
        for (ssize_t length; (length = TEMP_FAILURE_RETRY(next())) > 0;) {
            answer.append(buffer, static_cast<size_t>(length));
        }
    }
    close(connection);
    return answer;
}

Lines FileManager::ask_lines(const std::string& question) const { return lines_of(ask(question)); }

Area FileManager::ask_area(const std::string& question) const {
    Area area;
    std::istringstream(ask(question)) >> area.left >> area.top >> area.width >> area.height;
    return area;
}

Area FileManager::settled_area(const std::string& question) const {
    Area area, before;
    wait_until([&] {
        before = ask_area(question);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        area = ask_area(question);
        return area && before == area;
    });
    return area;
}

std::string FileManager::situation() const {
    return "windows:\n" + ask("windows") + "question: " + ask("alert") + "\nits methods:\n" +
           ask("doing") + "its messages:\n" + read_file(errors_);
}

Lines FileManager::messages() const {
    static const std::regex variable_parts("^[-0-9]+ [:.0-9]+ |\\[[0-9]+:[0-9]+\\]");
    static const std::regex about_bundles("user defined AppKit bundles|Loaded '.*\\.bundle'");
    Lines kept;
    for (const std::string& line : lines_of(read_file(errors_))) {
        if (std::regex_search(line, about_bundles)) continue;
        kept.push_back(std::regex_replace(line, variable_parts, ""));
    }
    return kept;
}

void start_window_manager() {
    if (variable("DELVIO_TEST_WINDOW_MANAGER").empty()) return;
    const std::string ready = variable("TEMP") + "/openbox-is-ready";
    start({"openbox", "--sm-disable", "--startup", "touch " + ready}, [] {});
    if (!wait_until([&] { return std::filesystem::exists(ready); })) {
        throw std::runtime_error("openbox did not start");
    }
}

}  // namespace test
