// Folders that are exchanged, removed, mounted twice, endlessly deep, or too many to be open at
// once; disks that claim that every name is taken; and a kernel that does not number its mounts.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "file_steps/folder.h"
#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::State;

namespace {

using Names = std::vector<std::string>;

bool mounts_have_numbers = true;

class OddFoldersTest : public testing::Test {
  protected:
    void SetUp() override { setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1); }
    Report perform(Kind kind, const Names& sources, const std::string& destination,
                   bool replace = false) {
        return operations::perform_request({kind, sources, destination, replace}, notes_,
                                           folder_.path("state"));
    }
    Outcome perform_one(Kind kind, const std::string& source, const std::string& destination,
                        bool replace = false) {
        return perform(kind, {source}, destination, replace).outcomes.at(0);
    }

    // Makes this many folders inside one another.
    void make_deep(const std::string& top, int levels) {
        ASSERT_EQ(mkdir(top.c_str(), 0755), 0);
        operations::Descriptor at(open(top.c_str(), O_PATH | O_CLOEXEC));
        for (int level = 1; level < levels; level++) {
            ASSERT_EQ(mkdirat(at.get(), "d", 0755), 0);
            at = operations::Descriptor(openat(at.get(), "d", O_PATH | O_CLOEXEC));
        }
    }
    // From the top, as nothing else gets that deep.
    void remove_deep(const std::string& top) {
        std::string outer = top, inner = top + ".inner";
        while (rename((outer + "/d").c_str(), inner.c_str()) == 0) {
            ASSERT_EQ(rmdir(outer.c_str()), 0);
            std::swap(outer, inner);
        }
        ASSERT_EQ(rmdir(outer.c_str()), 0);
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    test::Notes notes_;
};

TEST_F(OddFoldersTest, ADestinationThatBecomesALinkHasNobodyElsesFilesTrashed) {
    const Names sources = {folder_.file("from/a", "new a"), folder_.file("from/b", "new b")};
    const std::string to = folder_.folder("to"), moved = folder_.path("moved");
    folder_.file("to/a", "old a");
    folder_.file("to/b", "old b");
    const std::string others = folder_.file("other/b", "other b");
    bool exchanged = false;
    notes_.at_progress = [&](const operations::Progress&) {
        if (std::exchange(exchanged, true)) return;
        EXPECT_EQ(rename(to.c_str(), moved.c_str()), 0);
        EXPECT_EQ(symlink(folder_.path("other").c_str(), to.c_str()), 0);
    };
    perform(Kind::Move, sources, to, true);
    EXPECT_TRUE(exchanged);
    EXPECT_EQ(test::read_file(others), "other b");
    EXPECT_EQ(test::read_file(moved + "/b"), "new b");
    EXPECT_EQ(test::read_file(folder_.path("data/Trash/files/b")), "old b");
}

TEST_F(OddFoldersTest, AnAliasWhoseNamesAreAllTakenFails) {
    const std::string source = folder_.file("a", "a"), to = folder_.folder("to");
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call(SYS_symlinkat, EEXIST)) return false;
        EXPECT_EQ(perform_one(Kind::Alias, source, to).reason, "no name is free for \"a\"");
        return true;
    }));
    EXPECT_EQ(test::names_in(to), Names());
}

TEST_F(OddFoldersTest, WhatCannotBeReplacedForEverFails) {
    const std::string source = folder_.file("from/a", "a"), to = folder_.folder("to");
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call(SYS_renameat2, EEXIST)) return false;
        for (const Kind kind : {Kind::Move, Kind::Copy}) {
            EXPECT_EQ(perform_one(kind, source, to, true).reason, "no name is free for \"a\"");
        }
        return true;
    }));
    EXPECT_EQ(test::read_file(source), "a");
    EXPECT_EQ(test::names_in(to), Names());
}

TEST_F(OddFoldersTest, TryingNamesEndsWhenItIsCancelled) {
    const std::string source = folder_.file("a", "a"), to = folder_.folder("to");
    // Looks at the answer, as a window's thread would, once the operation has begun.
    class Canceller : public test::Notes {
        bool is_cancelled() override { return ++questions_ > 50; }
        int questions_ = 0;
    } canceller;
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call(SYS_symlinkat, EEXIST)) return false;
        const Report report = operations::perform_request({Kind::Alias, {source}, to, false},
                                                          canceller, folder_.path("state"));
        EXPECT_TRUE(report.stopped);
        EXPECT_EQ(report.outcomes[0].state, State::Skipped);
        return true;
    }));
}

TEST_F(OddFoldersTest, AFolderIsNotCopiedIntoItselfThroughASecondMount) {
    const std::string tree = folder_.folder("tree"), inner = folder_.folder("tree/inner");
    const std::string again = folder_.folder("again");
    folder_.file("tree/inner/a", "a");
    const bool mounted = test::in_child([&] {
        if (!test::enter_own_mounts()) return false;
        if (mount(inner.c_str(), again.c_str(), nullptr, MS_BIND, nullptr) != 0) return false;
        for (const Kind kind : {Kind::Copy, Kind::Move}) {
            EXPECT_EQ(perform_one(kind, tree, again).reason,
                      "a folder cannot be copied into itself, and the destination \"inner\" is "
                      "inside the one that is copied");
        }
        return true;
    });
    if (!mounted) GTEST_SKIP() << "nothing can be mounted here";
    EXPECT_EQ(test::names_in(inner), Names({"a"}));
}

TEST_F(OddFoldersTest, AMoveTakesNothingOutOfWhatIsMountedInItsSource) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = folder_.folder("tree"), place = folder_.folder("tree/place");
    const std::string others = folder_.file("other/a", "a");
    const bool mounted = test::in_child([&] {
        if (!test::enter_own_mounts()) return false;
        const std::string other = folder_.path("other");
        if (mount(other.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0) return false;
        EXPECT_EQ(perform_one(Kind::Move, tree, volume_.path()).reason,
                  "another volume is mounted at \"place\", which cannot be moved");
        return true;
    });
    if (!mounted) GTEST_SKIP() << "nothing can be mounted here";
    EXPECT_EQ(test::read_file(others), "a");
    EXPECT_EQ(test::names_in(volume_.path()), Names());
}

TEST_F(OddFoldersTest, ATreeThatIsFarTooDeepIsRefusedAndLeavesNothing) {
    const std::string tree = folder_.path("tree"), to = folder_.folder("to");
    make_deep(tree, 9000);
    const Outcome copied = perform_one(Kind::Copy, tree, to);
    EXPECT_EQ(copied.state, State::Failed);
    EXPECT_EQ(copied.reason, "\"d\" is nested more than 300 folders deep");
    EXPECT_EQ(test::names_in(to), Names());
    // A rename works at any depth.
    EXPECT_EQ(perform_one(Kind::Move, tree, to).state, State::Done);
    remove_deep(to + "/tree");
}

TEST_F(OddFoldersTest, ATreeOfTheGreatestDepthIsCopiedWithTheUsualNumberOfOpenFiles) {
    const std::string tree = folder_.path("tree"), to = folder_.folder("to");
    make_deep(tree, 300);
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit usual = {1024, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(perform_one(Kind::Copy, tree, to).reason, "");
    setrlimit(RLIMIT_NOFILE, &before);
    remove_deep(to + "/tree");
    remove_deep(tree);
}

TEST_F(OddFoldersTest, WithFewOpenFilesAllowedEachOperationIsDoneOrSaysWhyNot) {
    const std::string tree = folder_.folder("tree"), to = folder_.folder("to");
    test::make_tree(tree, 40);
    const test::State before = test::state_of(tree, true);
    int failed = 0;
    for (int limit = 4; limit < 40; limit++) {
        SCOPED_TRACE(limit);
        const std::string before_that = folder_.folder("before " + std::to_string(limit));
        EXPECT_TRUE(test::in_child([&] {
            // The sanitizers open a pipe when they meet a class for the first time.
            EXPECT_EQ(perform_one(Kind::Copy, tree, before_that).state, State::Done);
            rlimit few;
            getrlimit(RLIMIT_NOFILE, &few);
            few.rlim_cur = static_cast<rlim_t>(limit);
            setrlimit(RLIMIT_NOFILE, &few);
            const Outcome outcome = perform_one(Kind::Copy, tree, to);
            few.rlim_cur = few.rlim_max;
            setrlimit(RLIMIT_NOFILE, &few);
            if (outcome.state == State::Done) {
                EXPECT_EQ(test::state_of(to + "/tree", true), before);
            } else {
                EXPECT_NE(outcome.reason.find("Too many open files"), std::string::npos)
                    << outcome.reason;
                EXPECT_EQ(test::names_in(to), Names());
            }
            return true;
        }));
        failed += test::names_in(to).empty();
        operations::remove_tree(operations::Descriptor(open(to.c_str(), O_PATH | O_CLOEXEC)).get(),
                                "tree");
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, 36);
}

TEST_F(OddFoldersTest, ARemovedFolderHasNoPathAlsoWhereAnotherBearsItsLastOne) {
    const std::string path = folder_.folder("gone");
    const operations::Descriptor gone(open(path.c_str(), O_PATH | O_CLOEXEC));
    EXPECT_EQ(operations::path_of_folder(gone.get()), path);
    ASSERT_EQ(rmdir(path.c_str()), 0);
    EXPECT_EQ(operations::path_of_folder(gone.get()), "");
    // The kernel adds this to the path of a removed folder.
    folder_.folder("gone (deleted)");
    errno = 0;
    EXPECT_EQ(operations::path_of_folder(gone.get()), "");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(operations::path_of_folder(-1), "");
}

TEST_F(OddFoldersTest, AVolumeIsToldByItsDeviceWhereMountsHaveNoNumbers) {
    ASSERT_FALSE(volume_.path().empty()) << "/dev/shm is no volume of its own";
    const auto mount_of = [](const std::string& path) {
        return operations::mount_of(
            operations::Descriptor(open(path.c_str(), O_PATH | O_CLOEXEC)).get());
    };
    const std::string tree = folder_.folder("tree");
    folder_.file("tree/in/it");
    mounts_have_numbers = false;
    const uint64_t here = mount_of(folder_.path());
    EXPECT_NE(here, 0u);
    EXPECT_EQ(mount_of(tree), here);
    EXPECT_NE(mount_of(volume_.path()), here);
    EXPECT_EQ(operations::mount_of(-1), 0u);
    EXPECT_EQ(perform_one(Kind::Move, tree, volume_.path()).state, State::Done);
    mounts_have_numbers = true;
    EXPECT_EQ(test::names_in(volume_.path() + "/tree"), Names({"in"}));
    EXPECT_NE(access(tree.c_str(), F_OK), 0);
}

}  // namespace

// As a kernel before 5.8 answers, where a test wants it.
extern "C" int statx(int folder, const char* path, int flags, unsigned mask,
                     struct statx* what) noexcept {
    const auto answer = syscall(SYS_statx, folder, path, flags, mask, what);
    if (answer == 0 && !mounts_have_numbers) what->stx_mask &= ~STATX_MNT_ID;
    return static_cast<int>(answer);
}
