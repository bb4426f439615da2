#include "hosts/screen_reader.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "support/waiting.h"

namespace test {

namespace {

const char* name_of(ScreenReader::Mode mode) {
    if (mode == ScreenReader::watch) return "watch";
    return mode == ScreenReader::active ? "active" : "idle";
}

}  // namespace

ScreenReader::ScreenReader(Mode mode) : record_(folder_.file("heard")) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) abort();
    process_ = fork();
    if (process_ == 0) {
        dup2(ends[0], STDIN_FILENO);
        execl("/usr/bin/python3", "python3", SCREEN_READER, record_.c_str(), name_of(mode),
              static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[0]);
    commands_ = ends[1];
    EXPECT_TRUE(hears("ready"));
}

ScreenReader::~ScreenReader() {
    close(commands_);
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

// A line is whole once its end has been written.
std::vector<std::string> ScreenReader::heard() const {
    std::vector<std::string> lines;
    std::ifstream record(record_);
    for (std::string line; std::getline(record, line) && !record.eof();) lines.push_back(line);
    return lines;
}

bool ScreenReader::hears(const std::string& line) {
    const bool is_heard = wait_for([&] {
        const std::vector<std::string> all = heard();
        const auto found =
            std::find_if(all.begin() + place_, all.end(),
                         [&](const std::string& each) { return each.starts_with(line); });
        if (found == all.end()) return false;
        place_ = found - all.begin() + 1;
        return true;
    });
    EXPECT_TRUE(is_heard) << line << "\namong " << testing::PrintToString(heard());
    return is_heard;
}

std::vector<std::string> ScreenReader::command(const std::string& words) {
    const size_t before = place_;
    const std::string line = words + "\n";
    EXPECT_EQ(write(commands_, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    if (!hears("done " + words)) return {};
    const std::vector<std::string> all = heard();
    return {all.begin() + before, all.begin() + place_ - 1};
}

}  // namespace test
