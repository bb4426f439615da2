#include "file_steps/temporaries.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "hosts/operations/scene.h"
#include "support/silent_file_system.h"
#include "support/temp_folder.h"

using operations::remove_left_temporaries;
using operations::Temporaries;

namespace {

class TemporariesTest : public testing::Test {
  protected:
    // A process takes a prefix, makes a file and a read-only folder under it, and is killed.
    std::string leave_behind() {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            const Temporaries temporaries(state_, destination_.get());
            const std::string path = to_ + "/" + temporaries.prefix();
            folder_.file("to/" + temporaries.prefix() + "0/inner/a", "half");
            folder_.file("to/" + temporaries.prefix() + "1", "half");
            chmod((path + "0/inner").c_str(), 0500);
            if (write(ends[1], path.data(), path.size()) < 0) _exit(1);
            raise(SIGKILL);
        }
        waitpid(child, nullptr, 0);
        char path[4096];
        const ssize_t size = read(ends[0], path, sizeof path);
        close(ends[0]);
        close(ends[1]);
        return std::string(path, size < 0 ? 0 : static_cast<size_t>(size));
    }

    test::TempFolder folder_;
    const std::string state_ = folder_.path("state"), to_ = folder_.folder("to");
    const operations::Descriptor destination_{open(to_.c_str(), O_RDONLY | O_DIRECTORY)};
    using Names = std::vector<std::string>;
};

TEST_F(TemporariesTest, WhatIsNoJournalStaysBesideThem) {
    leave_behind();
    const std::string others[] = {"other--0123456789abcdef", "delvio-0123456789abcdeX"};
    for (const std::string& other : others) folder_.file("state/temporaries/" + other, "kept");
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(state_ + "/temporaries"), Names({others[1], others[0]}));
}

TEST_F(TemporariesTest, WhatAKilledProcessLeftIsRemoved) {
    const std::string path = leave_behind();
    folder_.file("to/.delvio-of-somebody", "kept");
    ASSERT_EQ(access((path + "0/inner/a").c_str(), F_OK), 0);
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(to_), Names({".delvio-of-somebody"}));
    EXPECT_EQ(test::names_in(state_ + "/temporaries"), Names());
}

TEST_F(TemporariesTest, WhatALivingOperationHasIsKept) {
    const Temporaries temporaries(state_, destination_.get());
    ASSERT_EQ(temporaries.problem(), "");
    folder_.file("to/" + temporaries.prefix() + "0", "half");
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(to_), Names({temporaries.prefix() + "0"}));
}

TEST_F(TemporariesTest, TheSamePrefixWithoutAJournalIsKept) {
    const std::string path = leave_behind();
    const std::string journal =
        state_ + "/temporaries/" + path.substr(to_.size() + 2, path.size() - to_.size() - 3);
    ASSERT_EQ(unlink(journal.c_str()), 0);
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(to_).size(), 2u);
}

TEST_F(TemporariesTest, AJournalWaitsForAVolumeThatIsAway) {
    leave_behind();
    const std::string away = folder_.path("away");
    ASSERT_EQ(rename(to_.c_str(), away.c_str()), 0);
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(away).size(), 2u);
    ASSERT_EQ(rename(away.c_str(), to_.c_str()), 0);
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(to_), Names());
}

TEST_F(TemporariesTest, AJournalWhoseVolumeStaysAwayIsForgotten) {
    constexpr time_t day = 24 * 3600;
    const struct {
        const char* name;
        std::string text;
        time_t days;
    } rows[] = {{"delvio-0000000000000000", "0\n" + folder_.path("away"), 89},
                {"delvio-0000000000000001", "0\n" + folder_.path("away"), 91},
                {"delvio-0000000000000002", "another disk\n" + to_, 89},
                {"delvio-0000000000000003", "another disk\n" + to_, 91}};
    for (const auto& row : rows) {
        const std::string path =
            folder_.file(std::string("state/temporaries/") + row.name, row.text);
        const timespec then = {time(nullptr) - row.days * day, 0}, times[] = {then, then};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(state_ + "/temporaries"), Names({rows[0].name, rows[2].name}));
}

TEST_F(TemporariesTest, NoLockOfAnotherProcessIsWaitedFor) {
    const std::string path = leave_behind();
    const int lock = open(folder_.file("state/temporaries/lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_SH), 0);
    remove_left_temporaries(state_);
    const Temporaries temporaries(state_, destination_.get());
    EXPECT_EQ(temporaries.problem(), "");
    EXPECT_EQ(test::names_in(to_), Names());
    close(lock);
}

TEST_F(TemporariesTest, AJournalWhoseProcessWasKilledBeforeItsNameIsRemoved) {
    folder_.file("state/temporaries/new-delvio-0123456789abcdef", "0\n" + to_);
    folder_.file("to/.new-delvio-0123456789abcdef-0", "kept");
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(state_ + "/temporaries"), Names());
    EXPECT_EQ(test::names_in(to_).size(), 1u);
}

// Without trying: that could be in the way of who locks it.
bool is_locked(const std::string& path) {
    struct stat what = {};
    stat(path.c_str(), &what);
    std::ifstream locks("/proc/locks");
    const std::string inode = ":" + std::to_string(what.st_ino) + " ";
    for (std::string line; std::getline(locks, line);) {
        if (line.find("FLOCK") != std::string::npos && line.find(inode) != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST_F(TemporariesTest, ADiskThatDoesNotAnswerHoldsUpNobody) {
    const bool mounted = test::in_child([&] {
        const std::string silent = folder_.folder("silent");
        const pid_t server = test::mount_silent_file_system(silent, test::Silence::at_lookup);
        if (server == 0) return false;
        // First, as folders are read.
        const std::string journal =
            folder_.file("state/temporaries/delvio-0000000000000000", "0\n" + silent + "/away");
        leave_behind();
        operations::begin_to_remove_left_temporaries(state_);
        // Other leftovers are removed at the same time.
        while (!test::names_in(to_).empty()) usleep(10000);
        while (!is_locked(journal)) usleep(10000);
        // Whoever comes later leaves it alone, even if it would wait.
        remove_left_temporaries(state_);
        EXPECT_EQ(test::names_in(state_ + "/temporaries"), Names({"delvio-0000000000000000"}));
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
        return true;
    });
    if (!mounted) GTEST_SKIP() << "nobody may mount a file system here";
}

TEST_F(TemporariesTest, AnEmptyOrForeignJournalRemovesNothing) {
    folder_.file("state/temporaries/delvio-0123456789abcdef", "");
    folder_.file("state/temporaries/notes", "0\n" + to_);
    folder_.file("to/.notes-a", "kept");
    folder_.file("to/.delvio-0123456789abcdef-a", "kept");
    remove_left_temporaries(state_);
    EXPECT_EQ(test::names_in(to_).size(), 2u);
}

}  // namespace
