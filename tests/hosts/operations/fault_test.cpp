// Problems around the engine: full disks, permissions, sources that change or vanish.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stddef.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

using operations::Kind;
using operations::State;

namespace {

class FaultTest : public testing::Test {
  protected:
    operations::Report perform(Kind kind, const std::vector<std::string>& sources,
                               const std::string& destination) {
        return operations::perform_request({kind, sources, destination, false}, notes_,
                                           folder_.path("state"));
    }

    operations::Outcome perform_one(Kind kind, const std::string& source,
                                    const std::string& destination) {
        return perform(kind, {source}, destination).outcomes.at(0);
    }

    void expect_nothing_in(const std::string& destination) {
        EXPECT_EQ(test::names_in(destination), std::vector<std::string>());
        EXPECT_EQ(test::names_in(folder_.path("state/temporaries")), std::vector<std::string>());
    }

    // A long file whose bytes differ from place to place.
    std::string long_file(const std::string& name, size_t size = 20 << 20) {
        std::string text(size, 0);
        for (size_t at = 0; at < size; at++) text[at] = static_cast<char>(at * 7 + at / 4096);
        return folder_.file(name, text);
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    test::Notes notes_;
};

using test::add_filter;

// From now on no write of this process takes more than this many bytes; for the rest the disk is
// full. Runs in a child, for machines where no disk can be mounted.
bool make_disk_seem_full(unsigned most) {
    const auto number = [](long call) { return static_cast<unsigned>(call); };
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number(SYS_copy_file_range), 3, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number(SYS_write), 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
        BPF_JUMP(BPF_JMP | BPF_JGT | BPF_K, most, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSPC),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    return add_filter(program, sizeof program / sizeof program[0]);
}

TEST_F(FaultTest, AFullVolumeKeepsEverySourceAndEveryFinishedCopy) {
    const std::string small = folder_.folder("small");
    const std::string first = folder_.file("from/first.txt", "first");
    const std::string tree = folder_.folder("from/tree");
    test::make_tree(tree, 50);
    long_file("from/tree/long");
    const test::State before = test::state_of(folder_.path("from"));
    const bool mounted = test::in_child([&] {
        if (!test::mount_small_volume(small, 4 << 20)) return false;
        for (const Kind kind : {Kind::Copy, Kind::Move}) {
            EXPECT_EQ(perform_one(kind, first, small).state, State::Done);
            const operations::Outcome full = perform_one(kind, tree, small);
            EXPECT_EQ(full.state, State::Failed);
            EXPECT_EQ(full.reason, "cannot copy \"long\": No space left on device");
            EXPECT_EQ(test::names_in(small), std::vector<std::string>({"first.txt"}));
            EXPECT_EQ(test::read_file(small + "/first.txt"), "first");
            unlink((small + "/first.txt").c_str());
        }
        folder_.file("from/first.txt", "first");
        return true;
    });
    if (!mounted) GTEST_SKIP() << "no volume can be mounted; a system call that fails stands in";
    EXPECT_EQ(test::state_of(folder_.path("from")), before);
}

// Behaves like a file system without a rename that refuses to replace. Runs in a child.
bool forbid_rename_flags() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(SYS_renameat2), 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[4])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    return add_filter(program, sizeof program / sizeof program[0]);
}

TEST_F(FaultTest, WhereEveryRenameReplacesNothingIsReplaced) {
    const std::string file = folder_.file("from/file", "new"), to = folder_.folder("to");
    const std::string tree = folder_.file("from/tree/a", "new").substr(0, file.size());
    folder_.file("to/file", "old");
    folder_.folder("to/tree");
    notes_.answers = {{operations::Choice::KeepBoth, false}};
    const bool done = test::in_child([&] {
        if (!forbid_rename_flags()) return false;
        for (const Kind kind : {Kind::Copy, Kind::Move}) {
            for (const auto& outcome : perform(kind, {file, tree}, to).outcomes) {
                EXPECT_EQ(outcome.state, State::Done) << outcome.reason;
            }
        }
        return true;
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(test::names_in(to), std::vector<std::string>({"file", "file copy", "file copy 2",
                                                            "tree", "tree copy", "tree copy 2"}));
    EXPECT_EQ(test::read_file(to + "/file") + test::read_file(to + "/file copy 2"), "oldnew");
    EXPECT_EQ(test::names_in(to + "/tree"), std::vector<std::string>());
    EXPECT_EQ(test::names_in(folder_.path("from")), std::vector<std::string>());
}

TEST_F(FaultTest, AWriteThatFindsNoSpaceKeepsEverySource) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    test::make_tree(tree, 50);
    folder_.file("tree/middle", std::string(50000, 'm'));
    const test::State before = test::state_of(tree, true);
    const bool done = test::in_child([&] {
        if (!make_disk_seem_full(20000)) return false;
        const operations::Outcome full = perform_one(Kind::Copy, tree, to);
        EXPECT_EQ(full.state, State::Failed);
        EXPECT_EQ(full.reason, "cannot copy \"middle\": No space left on device");
        return true;
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(test::state_of(tree, true), before);
    expect_nothing_in(to);
}

TEST_F(FaultTest, ALongFileThatFindsNoSpaceOnAnotherVolumeStaysWhereItIs) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string source = long_file("long", 1 << 20);
    const std::string bytes = test::read_file(source);
    const bool done = test::in_child([&] {
        if (!make_disk_seem_full(20000)) return false;
        EXPECT_EQ(perform_one(Kind::Move, source, volume_.path()).state, State::Failed);
        return true;
    });
    EXPECT_TRUE(done);
    EXPECT_EQ(test::read_file(source), bytes);
    expect_nothing_in(volume_.path());
}

TEST_F(FaultTest, AReadOnlyDestinationIsRefusedBeforeAnythingIsTouched) {
    const std::string source = folder_.file("from/a.txt", "a"), to = folder_.folder("to");
    chmod(to.c_str(), 0555);
    const test::Unprivileged user;
    for (const Kind kind : {Kind::Move, Kind::Copy, Kind::Alias}) {
        const operations::Outcome refused = perform_one(kind, source, to);
        EXPECT_EQ(refused.state, State::Failed);
        EXPECT_EQ(refused.reason, "cannot put anything into \"to\": Permission denied");
    }
    EXPECT_EQ(test::read_file(source), "a");
    EXPECT_EQ(test::names_in(to), std::vector<std::string>());
    chmod(to.c_str(), 0755);
}

TEST_F(FaultTest, AReadOnlyVolumeIsRefusedBeforeAnythingIsTouched) {
    const std::string source = folder_.file("from/a.txt", "a"), to = folder_.folder("to");
    const bool mounted = test::in_child([&] {
        if (!test::mount_small_volume(to, 1 << 20)) return false;
        const std::string there = folder_.file("to/there", "t");
        EXPECT_EQ(mount(nullptr, to.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        EXPECT_EQ(perform_one(Kind::Copy, source, to).reason,
                  "cannot put anything into \"to\": Read-only file system");
        EXPECT_EQ(perform_one(Kind::Move, there, folder_.path("from")).reason,
                  "cannot remove anything from \"to\": Read-only file system");
        EXPECT_EQ(test::read_file(there), "t");
        return true;
    });
    if (!mounted) GTEST_SKIP() << "no volume can be mounted; permissions stand in";
    EXPECT_EQ(test::names_in(folder_.path("from")), std::vector<std::string>({"a.txt"}));
}

TEST_F(FaultTest, AnUnreadableFileFailsAloneAndTheOthersAreCopied) {
    const std::string good = folder_.file("from/good", "good");
    const std::string bad = folder_.file("from/bad", "bad");
    const std::string last = folder_.file("from/last", "last"), to = folder_.folder("to");
    chmod(bad.c_str(), 0);
    const test::Unprivileged user;
    const operations::Report report = perform(Kind::Copy, {good, bad, last}, to);
    EXPECT_EQ(report.outcomes[1].state, State::Failed);
    EXPECT_EQ(report.outcomes[1].reason, "cannot read \"bad\": Permission denied");
    EXPECT_EQ(test::names_in(to), std::vector<std::string>({"good", "last"}));
}

TEST_F(FaultTest, AFolderWithAnUnreadableFileIsNotCopiedInPart) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    test::make_tree(tree, 30);
    chmod(folder_.file("tree/folder 1/secret", "secret").c_str(), 0);
    const test::Unprivileged user;
    const operations::Outcome outcome = perform_one(Kind::Copy, tree, to);
    EXPECT_EQ(outcome.state, State::Failed);
    EXPECT_EQ(outcome.reason, "cannot read \"secret\": Permission denied");
    expect_nothing_in(to);
}

TEST_F(FaultTest, AMoveToAnotherVolumeIsRefusedWhereTheSourceCannotBeRemoved) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string source = folder_.file("from/a", "a"), tree = folder_.folder("tree");
    folder_.file("tree/inner/b", "b");
    chmod(folder_.path("from").c_str(), 0555);
    chmod(folder_.path("tree/inner").c_str(), 0555);
    {
        const test::Unprivileged user;
        EXPECT_EQ(perform_one(Kind::Move, source, volume_.path()).reason,
                  "cannot remove anything from \"from\": Permission denied");
        EXPECT_EQ(perform_one(Kind::Move, tree, volume_.path()).reason,
                  "cannot remove anything from \"inner\": Permission denied");
    }
    chmod(folder_.path("tree/inner").c_str(), 0755);
    EXPECT_EQ(test::read_file(source) + test::read_file(folder_.path("tree/inner/b")), "ab");
    expect_nothing_in(volume_.path());
}

TEST_F(FaultTest, AReadOnlyFolderIsCopiedWithAllThatIsInIt) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    folder_.file("tree/inner/a", "a");
    chmod(folder_.path("tree/inner").c_str(), 0555);
    chmod(tree.c_str(), 0555);
    const test::Unprivileged user;
    EXPECT_EQ(perform_one(Kind::Copy, tree, to).state, State::Done);
    EXPECT_EQ(test::state_of(folder_.path("to/tree"), true), test::state_of(tree, true));
    for (const char* path : {"tree", "tree/inner", "to/tree", "to/tree/inner"}) {
        chmod(folder_.path(path).c_str(), 0755);
    }
}

TEST_F(FaultTest, AFileThatGrowsWhileItIsReadIsNotCopiedTorn) {
    const std::string source = long_file("long"), to = folder_.folder("to");
    notes_.at_progress = [&](const operations::Progress&) {
        const int file = open(source.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        EXPECT_EQ(write(file, "more", 4), 4);
        close(file);
    };
    const operations::Outcome outcome = perform_one(Kind::Copy, source, to);
    EXPECT_EQ(outcome.state, State::Failed);
    EXPECT_EQ(outcome.reason, "\"long\" was changed while it was read");
    expect_nothing_in(to);
}

TEST_F(FaultTest, AFileThatIsChangedOnceIsCopiedAsItIsThen) {
    const std::string source = long_file("long"), to = folder_.folder("to");
    bool changed = false;
    notes_.at_progress = [&](const operations::Progress&) {
        if (std::exchange(changed, true)) return;
        const int file = open(source.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(pwrite(file, "other", 5, 100), 5);
        close(file);
    };
    EXPECT_EQ(perform_one(Kind::Copy, source, to).state, State::Done);
    EXPECT_EQ(test::read_file(folder_.path("to/long")), test::read_file(source));
}

TEST_F(FaultTest, AFileThatIsCutShortWhileItIsReadIsNotCopiedTorn) {
    const std::string source = long_file("long"), to = folder_.folder("to");
    off_t size = 16 << 20;
    notes_.at_progress = [&](const operations::Progress&) {
        EXPECT_EQ(truncate(source.c_str(), size -= 1 << 20), 0);
    };
    EXPECT_EQ(perform_one(Kind::Copy, source, to).state, State::Failed);
    expect_nothing_in(to);
}

TEST_F(FaultTest, AMovedFolderThatGetsAFileMeanwhileStaysWhereItIs) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = folder_.folder("tree");
    test::make_tree(tree, 40);
    bool added = false;
    notes_.at_progress = [&](const operations::Progress& progress) {
        if (progress.items_done < 20 || std::exchange(added, true)) return;
        folder_.file("tree/late", "late");
    };
    const operations::Outcome outcome = perform_one(Kind::Move, tree, volume_.path());
    EXPECT_EQ(outcome.state, State::Failed);
    EXPECT_TRUE(added);
    EXPECT_EQ(test::read_file(folder_.path("tree/late")), "late");
    expect_nothing_in(volume_.path());
}

TEST_F(FaultTest, AFileThatIsChangedAfterItWasCopiedForAMoveStaysWhereItIs) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string one = folder_.file("from/one", "one"), two = folder_.file("from/two", "two");
    notes_.at_progress = [&](const operations::Progress& progress) {
        if (progress.path == two && progress.items_done == 2) folder_.file("from/one", "new");
    };
    const operations::Report report = perform(Kind::Move, {one, two}, volume_.path());
    EXPECT_EQ(report.outcomes[0].reason, "\"one\" was changed while it was being moved");
    EXPECT_EQ(report.outcomes[1].state, State::Done);
    EXPECT_EQ(test::read_file(one), "new");
    EXPECT_EQ(test::names_in(volume_.path()), std::vector<std::string>({"two"}));
    EXPECT_EQ(test::names_in(folder_.path("from")), std::vector<std::string>({"one"}));
}

TEST_F(FaultTest, AVanishedSourceFailsAndTheOthersAreMoved) {
    const std::string there = folder_.file("from/there", "there"), to = folder_.folder("to");
    const operations::Report report = perform(Kind::Move, {folder_.path("from/gone"), there}, to);
    EXPECT_EQ(report.outcomes[0].state, State::Failed);
    EXPECT_EQ(report.outcomes[0].reason, "\"gone\" is no longer there");
    EXPECT_EQ(report.outcomes[1].target, to + "/there");
}

TEST_F(FaultTest, AMissingDestinationIsRefused) {
    const std::string source = folder_.file("a", "a");
    EXPECT_EQ(perform_one(Kind::Copy, source, folder_.path("none")).reason,
              "cannot open the destination \"none\": No such file or directory");
    EXPECT_EQ(perform_one(Kind::Move, source, source).state, State::Failed);
    EXPECT_EQ(test::read_file(source), "a");
}

TEST_F(FaultTest, CancelKeepsTheSourceAndRemovesWhatIsHalfDone) {
    const std::string source = long_file("long"), to = folder_.folder("to");
    notes_.at_progress = [&](const operations::Progress&) { notes_.cancelled = true; };
    const operations::Report report = perform(Kind::Copy, {source, source}, to);
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes[0].state, State::Skipped);
    EXPECT_EQ(report.outcomes[1].reason, "stopped");
    expect_nothing_in(to);
}

TEST_F(FaultTest, WithoutAPlaceForTheJournalNothingIsCopied) {
    const std::string source = folder_.file("a", "a"), to = folder_.folder("to");
    folder_.file("state", "a file");
    setenv("XDG_RUNTIME_DIR", folder_.path("state").c_str(), 1);
    EXPECT_EQ(perform_one(Kind::Copy, source, to).state, State::Failed);
    EXPECT_EQ(test::names_in(to), std::vector<std::string>());
    // A move within a volume leaves nothing that a journal would have to name.
    EXPECT_EQ(perform_one(Kind::Move, source, to).state, State::Done);
}

}  // namespace
