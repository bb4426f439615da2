#include "wayland/native_window.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

namespace test {

NativeWindow::NativeWindow(const std::string& record, const Changes& environment, Protocol protocol)
    : record_(record) {
    process_ = fork();
    if (process_ != 0) return;
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    unsetenv(protocol == wayland ? "DISPLAY" : "WAYLAND_DISPLAY");
    setenv("GDK_BACKEND", protocol == wayland ? "wayland" : "x11", 1);
    execl("/usr/bin/python3", "python3", NATIVE_WINDOW, record.c_str(), nullptr);
    _exit(127);
}

NativeWindow::~NativeWindow() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

int NativeWindow::count(const std::string& wanted) const {
    int found = 0;
    std::ifstream record(record_);
    for (std::string line; std::getline(record, line);) found += line == wanted;
    return found;
}

}  // namespace test
