// The command with a low limit on open files.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"

namespace {

using test::Outcome;

class DescriptorLimit : public testing::Test {
  protected:
    // Whether the command gives the expected result under these limits.
    bool with_limit(rlim_t now, rlim_t hard, const std::function<bool(const Outcome&)>& is_right) {
        const std::string path = folder.file("file.txt", "text");
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit = {now, hard};
            setrlimit(RLIMIT_NOFILE, &limit);
            _exit(is_right(test::run_delvio({"menu", "--print", path})) ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    test::TempFolder folder;
};

TEST_F(DescriptorLimit, TooLowALimitIsSaidAndEndsTheCommand) {
    for (const rlim_t limit : {16, 20, 32, 64, 100}) {
        const auto says_so = [limit](const Outcome& outcome) {
            return outcome.status == 1 && outcome.out.empty() &&
                   outcome.err == "delvio: only " + std::to_string(limit) +
                                      " files may be open at a time, and 128 are needed; see "
                                      "\"ulimit -n\"\n";
        };
        EXPECT_TRUE(with_limit(limit, limit, says_so)) << limit;
    }
}

TEST_F(DescriptorLimit, ALimitThatMayBeRaisedIsRaised) {
    const auto works = [](const Outcome& outcome) {
        return outcome.status == 0 && outcome.out.find("file.txt") != std::string::npos;
    };
    EXPECT_TRUE(with_limit(16, 1024, works));
    EXPECT_TRUE(with_limit(128, 128, works));
}

}  // namespace
