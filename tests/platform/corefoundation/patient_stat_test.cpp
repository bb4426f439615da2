// Queries to disks that always answer, and to one that has stopped.
#include "corefoundation/patient_stat.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <future>

#include "corefoundation/local_stat.h"
#include "corefoundation/silent_disks.h"
#include "support/silent_file_system.h"
#include "support/temp_folder.h"

namespace {

using namespace files;

const int cannot_mount = 77;

class PatientStat : public testing::Test {
  protected:
    // Runs `work` in its own process, with a file system that is already silent.
    template <typename Work>
    void beside_a_silent_disk(const Work& work) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(100);
            server = test::mount_silent_file_system(disk, test::Silence::when_stopped);
            if (!server) _exit(cannot_mount);
            stop();
            work();
            kill(server, SIGKILL);
            _exit(HasFailure());
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        if (WEXITSTATUS(status) == cannot_mount) {
            GTEST_SKIP() << "nobody may mount a file system here";
        }
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    void stop() {
        kill(server, SIGSTOP);
        waitpid(server, nullptr, WUNTRACED);
    }
    void go_on() { kill(server, SIGCONT); }
    static void wait_for_questions(size_t count) {
        while (open_questions() != count) usleep(1000);
    }
    std::string file(const std::string& name) const { return disk + "/" + name; }

    test::TempFolder folder;
    const std::string disk = folder.folder("disk");
    pid_t server = 0;
};

TEST_F(PatientStat, SaysWhatIsThereAndWhatIsMissing) {
    const std::string here = folder.file("a file", "text");
    const std::string away = folder.link("away", "/proc/self/status");
    ASSERT_TRUE(patient_stat(here, 30));
    EXPECT_EQ(patient_stat(here, 30)->st_size, 4);
    EXPECT_TRUE(S_ISDIR(patient_stat(folder.path(), 30)->st_mode));
    EXPECT_TRUE(patient_stat(away, 30));
    EXPECT_FALSE(patient_stat(folder.path("missing"), 30));
    EXPECT_FALSE(patient_stat("/proc/self/missing", 30));
    EXPECT_EQ(open_questions(), 0u);
}

// Simulates a disk that stops, for machines where nobody may mount one.
std::atomic<bool> is_silent;

int look_when_it_answers(const char* path, struct stat* status) {
    while (is_silent) usleep(1000);
    return stat(path, status);
}

class NoAnswer : public PatientStat {
  protected:
    void SetUp() override { is_silent = true; }
    void TearDown() override { answer(); }
    static void answer() {
        is_silent = false;
        wait_for_questions(0);
    }
    static bool is_there(const std::string& path) {
        return patient_stat(path, 0.05, look_when_it_answers).has_value();
    }
};

TEST_F(NoAnswer, CountsAsMissingUntilItComes) {
    EXPECT_FALSE(is_there("/proc/self/status"));
    EXPECT_EQ(open_questions(), 1u);
    EXPECT_FALSE(is_there("/proc/self/stat"));
    EXPECT_FALSE(is_there("/proc/1/stat"));
    EXPECT_EQ(open_questions(), 1u) << "of the same mount nothing more was asked";
    EXPECT_TRUE(patient_stat(folder.file("other"), 30));
    answer();
    EXPECT_TRUE(patient_stat("/proc/self/status", 30, look_when_it_answers));
}

TEST_F(NoAnswer, KeepsFewThreadsWaiting) {
    for (int i = 0; i < 12; i++) {
        const std::string link = folder.link("link" + std::to_string(i), "/proc/self");
        EXPECT_FALSE(is_there(link + "/status"));
    }
    EXPECT_GE(open_questions(), 1u);
    EXPECT_LE(open_questions(), 4u);
}

TEST_F(PatientStat, ADiskThatAnswersIsAsked) {
    beside_a_silent_disk([this] {
        go_on();
        const auto found = patient_stat(file("a.txt"), 30);
        EXPECT_TRUE(found && S_ISREG(found->st_mode));
        EXPECT_FALSE(patient_stat(file("missing"), 30));
        EXPECT_EQ(open_questions(), 0u);
    });
}

TEST_F(PatientStat, ADiskThatDoesNotAnswerIsAskedOnce) {
    const std::string other = folder.file("other");
    beside_a_silent_disk([&] {
        for (const char* name : {"a.txt", "b.txt", "c.txt", "folder/d.txt"}) {
            EXPECT_FALSE(patient_stat(file(name), 0.05));
        }
        EXPECT_EQ(open_questions(), 1u);
        EXPECT_TRUE(patient_stat(other, 30));
        EXPECT_TRUE(patient_stat("/proc/self/status", 30));
    });
}

TEST_F(PatientStat, ADiskThatAnswersAgainIsAskedAgain) {
    beside_a_silent_disk([this] {
        EXPECT_FALSE(patient_stat(file("a.txt"), 0.05));
        go_on();
        wait_for_questions(0);
        EXPECT_TRUE(patient_stat(file("a.txt"), 30));
    });
}

TEST_F(PatientStat, WhoHasMorePatienceStillAsks) {
    beside_a_silent_disk([this] {
        EXPECT_FALSE(patient_stat(file("a.txt"), 0.05));
        auto other = std::async(std::launch::async,
                                [this] { return patient_stat(file("b.txt"), 90).has_value(); });
        wait_for_questions(2);
        go_on();
        EXPECT_TRUE(other.get());
    });
}

TEST_F(PatientStat, FewThreadsWaitInAll) {
    for (int i = 0; i < 12; i++) folder.link("link" + std::to_string(i), disk);
    beside_a_silent_disk([this] {
        for (int i = 0; i < 12; i++) {
            EXPECT_FALSE(patient_stat(folder.path("link" + std::to_string(i) + "/a.txt"), 0.05));
        }
        EXPECT_GE(open_questions(), 1u);
        EXPECT_LE(open_questions(), 4u);
    });
}

TEST_F(PatientStat, KnowsTheMountWithoutTouchingIt) {
    beside_a_silent_disk([this] {
        EXPECT_EQ(foreign_mount_of(file("folder/a.txt")), disk);
        EXPECT_EQ(foreign_mount_of(disk), disk);
        EXPECT_NE(foreign_mount_of(disk + "et/a.txt"), disk);
        EXPECT_EQ(foreign_mount_of("/proc/self"), "/proc");
        struct stat status;
        EXPECT_EQ(local_stat(file("a.txt"), &status), Local::unknown);
        folder.link("link", disk);
        EXPECT_EQ(local_stat(folder.path("link/a.txt"), &status), Local::unknown);
    });
}

uint64_t mount_of(const std::string& path) {
    struct statx status = {};
    const bool is_known = statx(AT_FDCWD, path.c_str(), 0, STATX_MNT_ID, &status) == 0;
    return is_known && status.stx_mask & STATX_MNT_ID ? status.stx_mnt_id : 0;
}

// A link on the system's own disk leads to that disk in most cases, and needs no thread.
TEST_F(PatientStat, ALinkToAnAbsolutePathIsLocalOnTheDiskOfTheSystem) {
    const std::string here = "/usr/share", link = folder.link("link", here);
    const bool is_one_mount =
        mount_of("/") == mount_of(folder.path()) && mount_of("/") == mount_of(here);
    struct stat ours = {}, theirs = {};
    ASSERT_EQ(stat(here.c_str(), &theirs), 0);
    if (local_stat(link, &ours) == Local::found) {
        EXPECT_EQ(ours.st_ino, theirs.st_ino);
    } else {
        EXPECT_FALSE(is_one_mount);
    }
    const std::string silent = folder.link("silent", "/proc/self/status");
    EXPECT_EQ(local_stat(silent, &ours), Local::unknown);
}

// The result is the same as stat's, or unknown where the path leaves the local disk.
TEST_F(PatientStat, LocalDisksSayWhatStatSays) {
    const std::string here = folder.file("a file", "text");
    const std::string link = folder.link("link", here);
    const std::string away = folder.link("away", "/proc/self/status");
    for (const std::string& path : {here, link, folder.path(), std::string("/")}) {
        struct stat ours = {}, theirs = {};
        const Local local = local_stat(path, &ours);
        ASSERT_EQ(stat(path.c_str(), &theirs), 0);
        if (local == Local::unknown) continue;  // the link's way, or all of it, is on other disks
        EXPECT_EQ(local, Local::found) << path;
        EXPECT_EQ(ours.st_ino, theirs.st_ino) << path;
        EXPECT_EQ(ours.st_mtime, theirs.st_mtime) << path;
    }
    struct stat status;
    EXPECT_EQ(local_stat("/dev/null", &status), Local::found);
    EXPECT_EQ(local_stat("/proc/self/status", &status), Local::unknown);
    EXPECT_EQ(local_stat(away, &status), Local::unknown);
    EXPECT_NE(local_stat(folder.path("missing"), &status), Local::found);
    EXPECT_EQ(local_stat("", &status), Local::missing);
}

// With ThreadSanitizer this shows that they do so without a race.
TEST(SilentDisks, SeveralThreadsMayAskAtTheSameTime) {
    test::TempFolder folder;
    const std::string local = folder.file("file");
    const auto ask = [&local] {
        int silent_local = 0;
        for (int turn = 0; turn < 50; turn++) {
            // The kernel's own files are on no local disk, so they are asked about.
            is_silent_entry("/proc/" + std::to_string(turn + 1));
            is_silent_target("/sys/kernel");
            is_silent_folder("/proc/self/fdinfo");
            silent_local += is_silent_entry(local) + is_silent_target(local);
        }
        return silent_local;
    };
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 4; i++) threads.push_back(std::async(std::launch::async, ask));
    for (std::future<int>& thread : threads) EXPECT_EQ(thread.get(), 0);
}

}  // namespace
