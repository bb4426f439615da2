#include "operations/tree_compare.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "file_steps/folder.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

namespace {

class TreeCompare : public testing::Test {
  protected:
    bool is_rest() {
        return operations::is_remainder_of(AT_FDCWD, folder_.path("rest").c_str(), AT_FDCWD,
                                           folder_.path("whole").c_str());
    }
    void set_time(const std::string& name, time_t seconds, long nanoseconds) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, folder_.path(name).c_str(), times, 0), 0);
    }
    // Files with these bytes, whose times differ.
    void write(const std::string& rest, const std::string& whole) {
        folder_.file("rest", rest);
        folder_.file("whole", whole);
        set_time("rest", 1000, 1);
        set_time("whole", 2000, 1);
    }
    operations::CopyState state_of(const std::string& name) {
        struct stat what = {};
        EXPECT_EQ(lstat(folder_.path(name).c_str(), &what), 0);
        return {what.st_ino, what.st_size, what.st_mtim, what.st_ctim, false};
    }
    bool is_changed(const operations::CopyState& state) {
        return operations::is_changed(AT_FDCWD, folder_.path("copy").c_str(), state);
    }
    // A folder in a folder, this many levels deep.
    void make_deep(const std::string& name, int levels) {
        operations::Descriptor at(open(folder_.folder(name).c_str(), O_RDONLY | O_DIRECTORY));
        for (int level = 0; level < levels; level++) {
            ASSERT_EQ(mkdirat(at.get(), "d", 0700), 0);
            at = operations::open_folder_at(at.get(), "d");
            ASSERT_TRUE(at);
        }
    }

    test::TempFolder folder_;
};

}  // namespace

TEST_F(TreeCompare, NothingIsNoRestAndNothingHasNone) {
    EXPECT_FALSE(is_rest());
    folder_.file("rest");
    EXPECT_FALSE(is_rest());
}

TEST_F(TreeCompare, AnotherKindIsNoRest) {
    folder_.file("rest");
    folder_.folder("whole");
    EXPECT_FALSE(is_rest());
}

TEST_F(TreeCompare, FilesOfDifferentTimesAreComparedByTheirBytes) {
    write("bytes", "bytes");
    EXPECT_TRUE(is_rest());
    write("bytes", "BYTES");
    EXPECT_FALSE(is_rest());
    write("bytes", "more bytes");
    EXPECT_FALSE(is_rest());
}

TEST_F(TreeCompare, TimesThatDifferByLessThanASecondDiffer) {
    write("bytes", "BYTES");
    set_time("whole", 1000, 2);
    EXPECT_FALSE(is_rest());
    set_time("whole", 1000, 1);
    EXPECT_TRUE(is_rest()) << "a file of one time and size counts as the same";
}

TEST_F(TreeCompare, WhatCannotBeReadIsNoRest) {
    for (const char* closed : {"rest", "whole"}) {
        write("bytes", "bytes");
        ASSERT_EQ(chmod(folder_.path(closed).c_str(), 0), 0);
        const test::Unprivileged obeying;
        EXPECT_FALSE(is_rest()) << closed;
        ASSERT_EQ(chmod(folder_.path(closed).c_str(), 0600), 0);
    }
}

TEST_F(TreeCompare, FoldersThatCannotBeReadAreNoRest) {
    for (const char* closed : {"rest", "whole"}) {
        folder_.folder("rest");
        folder_.folder("whole");
        ASSERT_EQ(chmod(folder_.path(closed).c_str(), 0), 0);
        const test::Unprivileged obeying;
        EXPECT_FALSE(is_rest()) << closed;
        ASSERT_EQ(chmod(folder_.path(closed).c_str(), 0700), 0);
    }
}

TEST_F(TreeCompare, LinksAreComparedByWhereTheyLead) {
    folder_.link("rest", "there");
    folder_.link("whole", "there");
    EXPECT_TRUE(is_rest());
    unlink(folder_.path("whole").c_str());
    folder_.link("whole", "elsewhere");
    EXPECT_FALSE(is_rest());
}

TEST_F(TreeCompare, PipesAreComparedByTheirKind) {
    ASSERT_EQ(mkfifo(folder_.path("rest").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(folder_.path("whole").c_str(), 0600), 0);
    EXPECT_TRUE(is_rest());
}

TEST_F(TreeCompare, AFolderWithAFileOfItsOwnIsNoRest) {
    folder_.folder("rest/inside");
    folder_.folder("whole/inside");
    folder_.file("whole/more");
    EXPECT_TRUE(is_rest());
    folder_.file("rest/inside/own");
    EXPECT_FALSE(is_rest());
}

TEST_F(TreeCompare, AFolderThatIsFarTooDeepIsNoRestAndCountsAsChanged) {
    make_deep("rest", operations::deepest_folder + 1);
    make_deep("whole", operations::deepest_folder + 1);
    EXPECT_FALSE(is_rest());
    make_deep("copy", operations::deepest_folder + 1);
    EXPECT_TRUE(is_changed(state_of("copy")));
}

TEST_F(TreeCompare, ACopyIsUnchangedWithItsInodeTimeAndSize) {
    folder_.file("copy", "bytes");
    const operations::CopyState state = state_of("copy");
    EXPECT_FALSE(is_changed(state));
    operations::CopyState other = state;
    other.size++;
    EXPECT_TRUE(is_changed(other));
    other = state;
    other.inode++;
    EXPECT_TRUE(is_changed(other));
    set_time("copy", 1000, 1);
    EXPECT_TRUE(is_changed(state));
    unlink(folder_.path("copy").c_str());
    EXPECT_TRUE(is_changed(state));
}
