// Who holds the lock of the undo journal, and for how long.
#include <gtest/gtest.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "file_steps/descriptor.h"
#include "file_steps/lone_process.h"
#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "operations/undo_journal.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

using operations::Kind;
using operations::State;

namespace {

using Names = std::vector<std::string>;

std::atomic<int> lock_attempts = 0, forks = 0;

// While this is false, a child gets no process of its own.
bool children_fork = true;

// While this is set, a grandchild of the process does not begin before a byte can be read here.
int gate = -1;
pid_t grandparent = 0;

void begin_child() {
    if (!children_fork) test::fail_call(SYS_clone, EAGAIN);
    char byte;
    if (gate >= 0 && getppid() != grandparent) (void)!read(gate, &byte, 1);
}

void watch_forks() {
    static const int registered = pthread_atfork([] { forks++; }, nullptr, begin_child);
    ASSERT_EQ(registered, 0);
}

// A process that does nothing, with copies of all descriptors.
class IdleChild {
  public:
    IdleChild() : child_(fork()) {
        while (child_ == 0) pause();
    }
    ~IdleChild() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    IdleChild(const IdleChild&) = delete;
    IdleChild& operator=(const IdleChild&) = delete;

  private:
    const pid_t child_;
};

class JournalLock : public testing::Test {
  protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        folder_.folder("to");
    }
    void move(const std::string& destination) {
        operations::perform_request({Kind::Move, {folder_.file("from/a", "a")}, destination, false},
                                    notes_, state_);
    }
    Names undo() {
        Names reasons;
        for (const auto& outcome : operations::undo_last(notes_, state_).outcomes) {
            if (outcome.state != State::Done) reasons.push_back(outcome.reason);
        }
        return reasons;
    }

    test::TempFolder folder_;
    const std::string state_ = folder_.path("state");
    test::Notes notes_;
};

}  // namespace

extern "C" int flock(int file, int how) noexcept {
    lock_attempts++;
    return static_cast<int>(syscall(SYS_flock, file, how));
}

TEST_F(JournalLock, AProcessThatWasForkedDuringAnOperationDoesNotKeepIt) {
    std::unique_ptr<IdleChild> child;
    notes_.at_progress = [&](const operations::Progress&) {
        if (!child) child = std::make_unique<IdleChild>();
    };
    move(folder_.path("to"));
    ASSERT_TRUE(child);
    EXPECT_EQ(undo(), Names());
}

TEST_F(JournalLock, AProcessThatWasForkedDuringAnUndoDoesNotKeepIt) {
    move(folder_.path("to"));
    std::unique_ptr<IdleChild> child;
    {
        const operations::LastOperation last(state_);
        ASSERT_EQ(last.problem(), "");
        child = std::make_unique<IdleChild>();
    }
    EXPECT_EQ(undo(), Names());
}

TEST_F(JournalLock, AReaderIsWaitedForUntilItHasRead) {
    move(folder_.path("to"));
    operations::Descriptor reader(open(operations::undo_journal_path(state_).c_str(), O_RDONLY));
    ASSERT_EQ(flock(reader.get(), LOCK_SH), 0);
    std::atomic<bool> has_ended = false;
    Names reasons;
    lock_attempts = 0;
    std::thread undoing([&] {
        reasons = undo();
        has_ended = true;
    });
    while (lock_attempts < 200 && !has_ended) usleep(1000);
    EXPECT_FALSE(has_ended);
    operations::unlock(reader);
    undoing.join();
    EXPECT_EQ(reasons, Names());
}

TEST_F(JournalLock, AnUndoStartsNoProcessWhileItHoldsIt) {
    const test::OtherVolume other(folder_.path());
    ASSERT_FALSE(other.path().empty()) << "/dev/shm is no volume of its own";
    watch_forks();
    move(other.path());
    folder_.file("state/temporaries/delvio-0000000000000000", "0\n" + folder_.path("away"));
    forks = 0;
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(forks, 0);
    EXPECT_EQ(test::names_in(folder_.path("from")), Names({"a"}));
}

TEST(LoneProcess, HoldsNoFileOfItsCallersAlsoBeforeItsFirstTurn) {
    watch_forks();
    int held[2], start[2];
    ASSERT_EQ(pipe(held), 0);
    ASSERT_EQ(pipe(start), 0);
    grandparent = getpid();
    gate = start[0];
    operations::run_alone([] {});
    gate = -1;
    close(held[1]);
    pollfd end = {held[0], POLLIN, 0};
    EXPECT_EQ(poll(&end, 1, 0), 1);
    EXPECT_EQ(write(start[1], "", 1), 1);
    for (const int file : {held[0], start[0], start[1]}) close(file);
}

TEST(LoneProcess, WithoutOneNothingIsDoneAndNobodyWaits) {
    watch_forks();
    const test::TempFolder folder;
    const auto leave = [&](const char* name) { mkdir(folder.path(name).c_str(), 0700); };
    children_fork = false;
    operations::run_alone([&] { leave("without the second"); });
    children_fork = true;
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call(SYS_clone, EAGAIN)) return false;
        operations::run_alone([&] { leave("without the first"); });
        return true;
    }));
    operations::run_alone([&] { leave("with both"); });
    EXPECT_TRUE(test::wait_for([&] { return !test::names_in(folder.path()).empty(); }));
    EXPECT_EQ(test::names_in(folder.path()), Names({"with both"}));
}
