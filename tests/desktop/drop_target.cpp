#include "desktop/drop_target.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <iostream>

extern char** environ;

namespace test {

DropTarget::DropTarget(const std::string& record, int x, int y, const std::string& type)
    : record_(record) {
    const std::string left = std::to_string(x), top = std::to_string(y);
    const char* arguments[] = {"python3",   DROP_TARGET,  record.c_str(), left.c_str(),
                               top.c_str(), type.c_str(), nullptr};
    posix_spawn(&process_, "/usr/bin/python3", nullptr, nullptr, const_cast<char**>(arguments),
                environ);
}

DropTarget::~DropTarget() {
    if (testing::Test::HasFailure()) {
        for (const std::string& line : lines()) std::cerr << "drop target: " << line << "\n";
    }
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::vector<std::string> DropTarget::lines() const {
    std::vector<std::string> lines;
    std::ifstream record(record_);
    for (std::string line; std::getline(record, line);) lines.push_back(line);
    return lines;
}

bool DropTarget::has(const std::string& wanted) const {
    const auto all = lines();
    return std::find(all.begin(), all.end(), wanted) != all.end();
}

std::vector<std::string> DropTarget::drops() const {
    std::vector<std::string> addresses;
    for (const std::string& line : lines()) {
        if (line.compare(0, 4, "got ") == 0) addresses.push_back(line.substr(4));
    }
    return addresses;
}

}  // namespace test
