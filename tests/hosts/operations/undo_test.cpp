// Undoing the last operation.
#include <gtest/gtest.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "hosts/operations/failing_calls.h"
#include "hosts/operations/scene.h"
#include "operations/undo_record.h"
#include "support/temp_folder.h"

using operations::Choice;
using operations::Kind;
using operations::Report;
using operations::State;

namespace {

using Names = std::vector<std::string>;

class UndoTest : public testing::Test {
  protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        folder_.folder("to");
    }
    Report perform(Kind kind, const Names& sources, const std::string& destination,
                   bool replace = false) {
        return operations::perform_request({kind, sources, destination, replace}, notes_,
                                           folder_.path("state"));
    }
    // The reason for a refusal; empty when the operation was undone.
    Names undo() {
        Names reasons;
        for (const auto& outcome : operations::undo_last(notes_, folder_.path("state")).outcomes) {
            if (outcome.state != State::Done) reasons.push_back(outcome.reason);
        }
        return reasons;
    }
    // All files except the trash and the engine's own.
    test::State world() {
        test::State state = test::state_of(folder_.path());
        std::erase_if(state, [](const auto& entry) {
            return entry.first.find("data") == 0 || entry.first.find("state") == 0;
        });
        return state;
    }

    // Changes from now on get a later time than earlier changes.
    void let_the_clock_tick() {
        const std::string path = folder_.path("state/tick");
        const auto time_of_new = [&] {
            unlink(path.c_str());
            folder_.file("state/tick");
            struct stat what = {};
            stat(path.c_str(), &what);
            return std::pair(what.st_ctim.tv_sec, what.st_ctim.tv_nsec);
        };
        const auto before = time_of_new();
        while (time_of_new() == before) usleep(1000);
        unlink(path.c_str());
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    test::Notes notes_;
};

TEST_F(UndoTest, WhatWasMovedReplacedOrKeptBesideComesBack) {
    folder_.file("to/a", "old a");
    folder_.file("to/b", "old b");
    const Names sources = {folder_.file("from/a", "new a"), folder_.file("from/b", "new b"),
                           folder_.folder("from/c")};
    const test::State before = world();
    notes_.answers = {{Choice::Replace, false}, {Choice::KeepBoth, false}};
    perform(Kind::Move, sources, folder_.path("to"));
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a", "b", "b copy", "c"}));
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(world(), before);
    EXPECT_EQ(undo(), Names({"there is nothing to undo"}));
}

TEST_F(UndoTest, AnOperationIsUndoneByItsNameOnlyWhileItIsTheLastOne) {
    const std::string a = folder_.file("a", "a"), b = folder_.file("b", "b");
    const std::string c = folder_.file("c", "c");
    const test::State before = world();
    const auto undo_named = [&](const std::string& operation) {
        const Report report = operations::undo_operation(operation, notes_, folder_.path("state"));
        return report.outcomes.front().state == State::Done ? "" : report.outcomes.front().reason;
    };
    const std::string first = perform(Kind::Move, {a}, folder_.path("to")).operation;
    const std::string second = perform(Kind::Copy, {b, c}, folder_.path("to")).operation;
    EXPECT_NE(first, "");
    EXPECT_NE(first, second);
    const test::State after = world();
    EXPECT_EQ(undo_named(first),
              "another operation came after it (copying \"b\" and 1 other), and only the last one "
              "can be undone");
    EXPECT_EQ(world(), after);
    EXPECT_EQ(undo_named(second), "");
    EXPECT_EQ(undo_named(first), "there is nothing to undo");
    const std::string third = perform(Kind::Trash, {b}, "").operation;
    EXPECT_EQ(undo_named(third), "");
    rename(folder_.path("to/a").c_str(), a.c_str());
    EXPECT_EQ(world(), before);
}

TEST_F(UndoTest, WhatCameAfterAnOperationIsNamed) {
    const std::string a = folder_.file("a", "a");
    const std::string first = perform(Kind::Copy, {a}, folder_.path("to")).operation;
    const struct {
        Kind kind;
        const char* done;
    } rows[] = {{Kind::Move, "moving \"b\""},
                {Kind::Copy, "copying \"b\""},
                {Kind::Alias, "making an alias of \"b\""},
                {Kind::Trash, "trashing \"b\""}};
    for (const auto& row : rows) {
        const std::string b = folder_.file("b", "b");
        const std::string second = perform(row.kind, {b}, folder_.folder("there")).operation;
        const Report report = operations::undo_operation(first, notes_, folder_.path("state"));
        EXPECT_EQ(report.outcomes.front().reason, std::string("another operation came after it (") +
                                                      row.done +
                                                      "), and only the last one can be undone");
        EXPECT_EQ(undo(), Names());
    }
}

TEST_F(UndoTest, AnOperationThatDidNothingHasNoName) {
    EXPECT_EQ(perform(Kind::Move, {folder_.path("missing")}, folder_.path("to")).operation, "");
}

TEST_F(UndoTest, ACopyGoesToTheTrashAndWhatItReplacedComesBack) {
    folder_.file("to/tree", "old");
    const std::string tree = folder_.folder("tree");
    test::make_tree(tree, 40);
    ASSERT_EQ(link((tree + "/0.txt").c_str(), (tree + "/again").c_str()), 0);
    const test::State before = world();
    perform(Kind::Copy, {tree}, folder_.path("to"), true);
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(world(), before);
    EXPECT_EQ(test::state_of(folder_.path("data/Trash/files/tree.2")), test::state_of(tree));
}

TEST_F(UndoTest, AChangedCopyIsKept) {
    const std::string tree = folder_.folder("tree"), a = folder_.file("a", "a");
    test::make_tree(tree, 40);
    perform(Kind::Copy, {a, tree}, folder_.path("to"));
    let_the_clock_tick();
    folder_.file("to/tree/folder 1/1.txt", "work of the user");
    const test::State before = world();
    EXPECT_EQ(undo(), Names({"the copy \"tree\" was changed since"}));
    EXPECT_EQ(world(), before);
}

TEST_F(UndoTest, AMoveToAnotherVolumeComesBack) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = folder_.folder("tree"), a = folder_.file("a", "a");
    test::make_tree(tree, 40);
    const test::State before = test::state_of(folder_.path("tree"), true);
    perform(Kind::Move, {tree, a}, volume_.path());
    EXPECT_EQ(test::names_in(volume_.path()), Names({"a", "tree"}));
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(test::state_of(folder_.path("tree"), true), before);
    EXPECT_EQ(test::read_file(a), "a");
    EXPECT_EQ(test::names_in(volume_.path()), Names());
}

TEST_F(UndoTest, AliasesAreRemovedUnlessTheyAreOtherFilesNow) {
    const std::string a = folder_.file("a", "a");
    const test::State before = world();
    perform(Kind::Alias, {a}, folder_.path("to"));
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(world(), before);
    perform(Kind::Alias, {a}, folder_.path("to"));
    ASSERT_EQ(unlink(folder_.path("to/a").c_str()), 0);
    folder_.file("to/a", "a file");
    EXPECT_EQ(undo(), Names({"\"a\" is another file now"}));
}

TEST_F(UndoTest, WhatWasTrashedComesBack) {
    const std::string a = folder_.file("in/a", "a"), b = folder_.folder("in/b");
    const test::State before = world();
    perform(Kind::Trash, {a, b}, "");
    EXPECT_EQ(test::names_in(folder_.path("in")), Names());
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(world(), before);
}

TEST_F(UndoTest, NothingIsUndoneWhenOneThingCannotBe) {
    const std::string a = folder_.file("from/a", "a"), b = folder_.file("from/b", "b");
    perform(Kind::Move, {a, b}, folder_.path("to"));
    folder_.file("from/b", "another");
    EXPECT_EQ(undo(), Names({"there is another \"b\" now where it was"}));
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a", "b"}));
    ASSERT_EQ(unlink(b.c_str()), 0);
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(test::read_file(a) + test::read_file(b), "ab");
}

TEST_F(UndoTest, AMissingFolderOrFileIsNamed) {
    const std::string a = folder_.file("from/a", "a"), b = folder_.file("other/b", "b");
    perform(Kind::Move, {a, b}, folder_.path("to"));
    ASSERT_EQ(rmdir(folder_.path("from").c_str()), 0);
    EXPECT_EQ(undo(), Names({"the folder \"from\" is no longer there"}));
}

TEST_F(UndoTest, ThingsMovedOutOfAFolderThatWasMovedTooComeBackIntoIt) {
    const std::string inner = folder_.file("from/f/inner", "i"), f = folder_.path("from/f");
    const test::State before = world();
    perform(Kind::Move, {inner, f}, folder_.path("to"));
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"f", "inner"}));
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(world(), before);
}

TEST_F(UndoTest, OnlyTheLastOperationIsUndone) {
    const std::string a = folder_.file("from/a", "a"), b = folder_.file("from/b", "b");
    perform(Kind::Move, {a}, folder_.path("to"));
    perform(Kind::Move, {b}, folder_.path("to"));
    // One that does nothing takes nothing back.
    perform(Kind::Move, {folder_.path("missing")}, folder_.path("to"));
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a"}));
    EXPECT_EQ(undo(), Names({"there is nothing to undo"}));
}

TEST_F(UndoTest, AnEmptiedTrashIsNoticedBeforeTheFirstStep) {
    const std::string a = folder_.file("from/a", "new"), b = folder_.file("from/b", "b");
    folder_.file("to/a", "old");
    perform(Kind::Move, {a, b}, folder_.path("to"), true);
    ASSERT_EQ(unlink(folder_.path("data/Trash/files/a").c_str()), 0);
    const test::State before = world();
    EXPECT_EQ(undo(), Names({"\"a\" is no longer in the trash"}));
    EXPECT_EQ(world(), before);
}

TEST_F(UndoTest, ATrashThatCannotBeUsedIsNoticedBeforeTheFirstStep) {
    const std::string a = folder_.file("from/a", "a"), b = folder_.file("from/b", "b");
    perform(Kind::Copy, {a, b}, folder_.path("to"));
    folder_.file("data/Trash", "a file");
    EXPECT_EQ(undo().size(), 2u);
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a", "b"}));
}

TEST_F(UndoTest, WhatIsLeftOfASourceThatWasTakenAwayInPartGivesWayToTheCopy) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = folder_.folder("tree");
    test::make_tree(tree, 40);
    const test::State before = test::state_of(tree, true);
    EXPECT_TRUE(test::in_child([&] {
        // Files can be removed, but folders cannot.
        if (!test::fail_call_with_flags(SYS_unlinkat, AT_REMOVEDIR, EIO)) return false;
        EXPECT_EQ(perform(Kind::Move, {tree}, volume_.path()).outcomes[0].state, State::Failed);
        return true;
    }));
    const test::State rest = test::state_of(tree, true);
    EXPECT_LT(rest.size(), before.size());
    EXPECT_GT(rest.size(), 0u);
    EXPECT_EQ(undo(), Names());
    EXPECT_EQ(test::state_of(tree, true), before);
    EXPECT_EQ(test::names_in(volume_.path()), Names());
}

TEST_F(UndoTest, ARestThatWasChangedSinceIsKept) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string tree = folder_.folder("tree");
    test::make_tree(tree, 40);
    EXPECT_TRUE(test::in_child([&] {
        if (!test::fail_call_with_flags(SYS_unlinkat, AT_REMOVEDIR, EIO)) return false;
        perform(Kind::Move, {tree}, volume_.path());
        return true;
    }));
    folder_.file("tree/new", "work of the user");
    const test::State rest = test::state_of(tree, true);
    EXPECT_EQ(undo(), Names({"\"tree\" was changed since"}));
    EXPECT_EQ(test::state_of(tree, true), rest);
}

// Seconds of this process's own.
double used_time() {
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST_F(UndoTest, TenTimesAsManyMovesTakeSomeTenTimesAsLongToUndo) {
    const auto undo_of = [&](int count) {
        Names sources;
        for (int index = 0; index < count; index++) {
            sources.push_back(folder_.file("from/" + std::to_string(index)));
        }
        perform(Kind::Move, sources, folder_.path("to"));
        const double begin = used_time();
        EXPECT_EQ(undo(), Names());
        return used_time() - begin;
    };
    const double few = undo_of(1000), many = undo_of(10000);
    // Work that grows with the square of their number would take a hundred times as long.
    EXPECT_LT(many, few * 40);
}

TEST_F(UndoTest, AnOperationUnderWayIsNotUndone) {
    const std::string a = folder_.file("from/a", "a"), b = folder_.file("from/b", "b");
    Names reasons;
    notes_.at_progress = [&](const operations::Progress&) {
        if (reasons.empty()) reasons = undo();
    };
    perform(Kind::Move, {a, b}, folder_.path("to"));
    EXPECT_EQ(reasons, Names({"the last operation is still under way"}));
    EXPECT_EQ(test::names_in(folder_.path("to")), Names({"a", "b"}));
}

TEST_F(UndoTest, WhatIsAboutToChangeIsWrittenDownBefore) {
    const struct {
        Kind kind;
        long call;
        const char* verb;
    } cases[] = {{Kind::Move, SYS_renameat2, "moving"},
                 {Kind::Copy, SYS_renameat2, "copying"},
                 {Kind::Trash, SYS_renameat2, "trashing"},
                 {Kind::Alias, SYS_symlinkat, "aliasing"}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.verb);
        const std::string source = folder_.file("from/a", "a");
        EXPECT_TRUE(test::in_child([&] {
            const pid_t child = fork();
            if (child == 0) {
                if (test::end_at_call(one.call)) perform(one.kind, {source}, folder_.path("to"));
                _exit(0);
            }
            int status = 0;
            waitpid(child, &status, 0);
            EXPECT_TRUE(WIFSIGNALED(status));
            return true;
        }));
        const std::string journal = test::read_file(folder_.path("state/last-operation"));
        EXPECT_NE(journal.find(std::string(one.verb) + '\0' + source + '\0'), std::string::npos);
        EXPECT_EQ(undo(), Names());
        EXPECT_EQ(test::read_file(source), "a");
        EXPECT_EQ(test::names_in(folder_.path("data/Trash/info")), Names());
    }
}

TEST_F(UndoTest, ADamagedJournalUndoesNothing) {
    folder_.file("state/last-operation", std::string("delvio-undo-2\0what\0", 19));
    EXPECT_EQ(undo(), Names({"the record of the last operation cannot be read"}));
    folder_.file("state/last-operation", std::string("delvio-undo-2\0moving\0/a\0/", 25));
    EXPECT_EQ(undo(), Names({"there is nothing to undo"}));
}

// What is relative would be looked for below whichever folder is the current one.
TEST_F(UndoTest, AJournalWithARelativePathUndoesNothing) {
    for (const char* const paths : {"a%/b", "/a%b", "%/b", "/a%"}) {
        std::string journal = std::string("delvio-undo-2%moving%") + paths + "%7%";
        std::replace(journal.begin(), journal.end(), '%', '\0');
        folder_.file("state/last-operation", journal);
        EXPECT_EQ(undo(), Names({"the record of the last operation cannot be read"})) << paths;
    }
}

// The undo removes the note of a file that it takes out of the trash, and no other file.
TEST_F(UndoTest, AJournalThatTakesAnotherFileForANoteUndoesNothing) {
    const std::string victim = folder_.file("victim", "v");
    const std::string thing = folder_.file("Trash/files/a", "a");
    struct stat what;
    ASSERT_EQ(stat(thing.c_str(), &what), 0);
    const operations::Trashed places[] = {
        {thing, victim},
        {folder_.path("Trash/files/a"), folder_.path("Trash/info/b.trashinfo")},
        {folder_.path("Trash/files/a"), folder_.path("info/a.trashinfo")},
        {victim, folder_.path("info/victim.trashinfo")}};
    for (const operations::Trashed& place : places) {
        const std::string note = folder_.file("Trash/info/b.trashinfo", "b");
        folder_.file("state/last-operation",
                     operations::begun_entry("1") +
                         operations::trashing_entry(folder_.path("a"), place, what.st_ino));
        EXPECT_EQ(undo(), Names({"the record of the last operation cannot be read"})) << place.info;
        EXPECT_EQ(test::read_file(victim), "v");
        EXPECT_EQ(test::read_file(note), "b");
        EXPECT_EQ(test::read_file(thing), "a");
    }
}

}  // namespace
