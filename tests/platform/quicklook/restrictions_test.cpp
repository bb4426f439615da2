// What a decoder can still do, asked in processes that have restricted themselves.
#include "quicklook/decoder/restrictions.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <sched.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include "support/temp_folder.h"

namespace {

using namespace thumbnails;

// The exit status of a process that restricts itself and does this; negative: killed by a signal.
int status_of(const std::function<bool()>& restrict_self, const std::function<int()>& deed) {
    const pid_t child = fork();
    if (child == 0) _exit(restrict_self() ? deed() : 99);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// 0 when the call went well, else its error.
int error_of(long result) { return result >= 0 ? 0 : errno; }

bool has_landlock() {
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
}

class Restrictions : public testing::Test {
  protected:
    void expect_decoder(int error, const std::function<long()>& deed, const char* what) {
        EXPECT_EQ(status_of([] { return true; }, [&] { return error_of(deed()); }), 0) << what;
        EXPECT_EQ(status_of(restrict_decoder, [&] { return error_of(deed()); }), error) << what;
    }

    test::TempFolder folder;
};

TEST_F(Restrictions, ADecoderHasNoNetwork) {
    expect_decoder(
        EPERM, [] { return socket(AF_INET, SOCK_STREAM, 0); }, "internet");
    expect_decoder(
        EPERM, [] { return socket(AF_UNIX, SOCK_STREAM, 0); }, "local");
}

TEST_F(Restrictions, ADecoderStartsNothing) {
    expect_decoder(
        EPERM, [] { return execl("/bin/true", "true", nullptr); }, "another program");
    expect_decoder(
        EPERM,
        []() -> long {
            const pid_t child = fork();
            if (child == 0) _exit(0);
            return child;
        },
        "another process");
}

TEST_F(Restrictions, ADecoderStartsThreads) {
    EXPECT_EQ(status_of(restrict_decoder,
                        [] {
                            int value = 1;
                            std::thread([&value] { value = 0; }).join();
                            return value;
                        }),
              0);
}

TEST_F(Restrictions, ADecoderWritesNothing) {
    const std::string path = folder.file("file", "text"), fresh = folder.path("fresh");
    expect_decoder(
        EACCES, [&] { return open(path.c_str(), O_WRONLY); }, "writing");
    expect_decoder(
        EACCES, [&] { return open(path.c_str(), O_RDWR | O_APPEND); }, "appending");
    expect_decoder(
        EACCES, [&] { return open(path.c_str(), O_RDONLY | O_TRUNC); }, "emptying");
    expect_decoder(
        EACCES, [&] { return open(fresh.c_str(), O_RDONLY | O_CREAT, 0600); }, "making");
    unlink(fresh.c_str());
    folder.file("file", "text");
    EXPECT_EQ(status_of(restrict_decoder, [&] { return error_of(mkdir(fresh.c_str(), 0700)); }),
              EPERM);
    EXPECT_EQ(status_of(restrict_decoder, [&] { return error_of(unlink(path.c_str())); }), EPERM);
    EXPECT_EQ(
        status_of(restrict_decoder, [&] { return error_of(rename(path.c_str(), fresh.c_str())); }),
        EPERM);
    EXPECT_EQ(status_of(restrict_decoder, [&] { return error_of(chmod(path.c_str(), 0777)); }),
              EPERM);
    EXPECT_EQ(test::read_file(path), "text");
}

TEST_F(Restrictions, ADecoderReadsTheSystemAndNotTheUser) {
    expect_decoder(
        0, [] { return open("/usr/share/mime/mime.cache", O_RDONLY); }, "the system's");
    if (!has_landlock()) GTEST_SKIP() << "this kernel has no Landlock";
    const std::string path = folder.file("file", "text");
    expect_decoder(
        EACCES, [&] { return open(path.c_str(), O_RDONLY); }, "the user's");
}

TEST_F(Restrictions, ADecoderReachesNoOtherProcess) {
    const pid_t other = fork();
    if (other == 0) {
        pause();
        _exit(0);
    }
    EXPECT_EQ(status_of(restrict_decoder, [&] { return error_of(kill(other, 0)); }), EPERM);
    EXPECT_EQ(status_of(restrict_decoder,
                        [&] { return error_of(ptrace(PTRACE_ATTACH, other, nullptr, nullptr)); }),
              EPERM);
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
}

TEST_F(Restrictions, ADecoderGetsNoNamespaceOfItsOwn) {
    EXPECT_EQ(status_of(restrict_decoder, [] { return error_of(unshare(CLONE_NEWUSER)); }), EPERM);
}

TEST_F(Restrictions, AProgramWritesToItsFolderOnly) {
    const std::string input = folder.file("input", "text");
    const std::string output = folder.folder("output"), elsewhere = folder.folder("elsewhere");
    const auto restrict_self = [&] { return restrict_program({{input}, output}); };
    const auto make = [](const std::string& path) {
        return error_of(open(path.c_str(), O_WRONLY | O_CREAT, 0600));
    };
    EXPECT_EQ(status_of(restrict_self, [&] { return make(output + "/a"); }), 0);
    EXPECT_EQ(status_of(restrict_self, [&] { return error_of(open(input.c_str(), O_RDONLY)); }), 0);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(socket(AF_INET, SOCK_DGRAM, 0)); }),
              EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(setsid()); }), EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(unshare(CLONE_NEWUSER)); }), EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return system("exit 0"); }), 0);
    if (!has_landlock()) GTEST_SKIP() << "this kernel has no Landlock";
    EXPECT_EQ(status_of(restrict_self, [&] { return make(elsewhere + "/a"); }), EACCES);
    EXPECT_EQ(status_of(restrict_self, [&] { return make(input); }), EACCES);
}

TEST_F(Restrictions, ResourcesAreLimited) {
    const auto limited = [](unsigned processor_seconds, unsigned seconds) {
        return [=] {
            limit_resources(100, processor_seconds, seconds);
            return true;
        };
    };
    const auto compute = [] {
        for (volatile unsigned i = 0;; i = i + 1) {
        }
        return 0;
    };
    const auto wait = [] {
        for (;;) pause();
        return 0;
    };
    const auto ask = [] {
        rlimit limit;
        getrlimit(RLIMIT_AS, &limit);
        return limit.rlim_cur == 100 * 1024 * 1024 ? 0 : 1;
    };
    EXPECT_EQ(status_of(limited(1, 200), compute), -SIGKILL);
    EXPECT_EQ(status_of(limited(200, 1), wait), -SIGALRM);
    EXPECT_EQ(status_of(limited(200, 200), ask), 0);
}

}  // namespace
