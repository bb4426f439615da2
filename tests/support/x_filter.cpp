#include "support/x_filter.h"

#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace test {

XFilter::XFilter(const std::vector<std::string>& hidden_extensions)
    : display_before_(getenv("DISPLAY")) {
    const std::string record = folder_.path("display");
    std::vector<const char*> arguments = {"python3", X_FILTER, record.c_str()};
    for (const std::string& name : hidden_extensions) arguments.push_back(name.c_str());
    arguments.push_back(nullptr);
    posix_spawn(&process_, "/usr/bin/python3", nullptr, nullptr,
                const_cast<char**>(arguments.data()), environ);
    std::string display;
    for (int i = 0; i < 1000 && display.empty(); i++) {
        if (access(record.c_str(), F_OK) == 0) display = read_file(record);
        if (display.empty()) usleep(10000);
    }
    if (display.empty()) throw std::runtime_error("the filter did not start");
    setenv("DISPLAY", display.c_str(), 1);
}

XFilter::~XFilter() {
    take_display_away();
    setenv("DISPLAY", display_before_.c_str(), 1);
}

void XFilter::take_display_away() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

}  // namespace test
