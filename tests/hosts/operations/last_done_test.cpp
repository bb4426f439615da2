#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "hosts/operations/scene.h"
#include "operations/engine.h"
#include "operations/last_done.h"
#include "operations/undo_journal.h"
#include "support/temp_folder.h"

namespace {

using operations::Kind;
using operations::last_done;
using operations::LastDone;

struct LastDoneTest : testing::Test {
    test::TempFolder folder;
    const std::string state = folder.path("state");

    void do_it(Kind kind, const std::vector<std::string>& sources, bool replace = false) {
        test::Notes notes;
        const operations::Report report = operations::perform_request(
            {kind, sources, folder.folder("to"), replace}, notes, state);
        for (const auto& outcome : report.outcomes) {
            ASSERT_EQ(outcome.state, operations::State::Done) << outcome.reason;
        }
    }
    void expect_done(Kind kind, const std::string& name, size_t count) {
        const auto done = last_done(state);
        ASSERT_TRUE(done);
        EXPECT_EQ(done->kind, kind);
        EXPECT_EQ(done->name, name);
        EXPECT_EQ(done->count, count);
    }
    void undo() {
        test::Notes notes;
        operations::undo_last(notes, state);
    }
};

TEST_F(LastDoneTest, IsNothingAtFirstAndAfterAnUndo) {
    EXPECT_FALSE(last_done(state));
    do_it(Kind::Move, {folder.file("a.txt")});
    EXPECT_TRUE(last_done(state));
    undo();
    EXPECT_FALSE(last_done(state));
}

TEST_F(LastDoneTest, NamesEachKindOfOperation) {
    do_it(Kind::Copy, {folder.file("a.txt")});
    expect_done(Kind::Copy, "a.txt", 1);
    do_it(Kind::Alias, {folder.path("a.txt")});
    expect_done(Kind::Alias, "a.txt", 1);
    do_it(Kind::Move, {folder.file("b\xff"), folder.file("c")});
    expect_done(Kind::Move, "b\xff", 2);
    do_it(Kind::Trash, {folder.file("unwanted")});
    expect_done(Kind::Trash, "unwanted", 1);
}

TEST_F(LastDoneTest, IsAMoveWhereAFileWasReplaced) {
    folder.file("to/a.txt", "old");
    do_it(Kind::Move, {folder.file("a.txt", "new")}, true);
    expect_done(Kind::Move, "a.txt", 1);
}

TEST_F(LastDoneTest, IsAMoveToAnotherVolume) {
    const test::OtherVolume other(folder.path());
    if (other.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    test::Notes notes;
    operations::perform_request({Kind::Move, {folder.file("a.txt")}, other.path(), false}, notes,
                                state);
    expect_done(Kind::Move, "a.txt", 1);
}

TEST_F(LastDoneTest, IsNothingWhileTheOperationIsUnderWay) {
    do_it(Kind::Move, {folder.file("a.txt")});
    const std::string journal = operations::undo_journal_path(state);
    const int file = open(journal.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(last_done(state));
    close(file);
    EXPECT_TRUE(last_done(state));
}

TEST_F(LastDoneTest, IsNothingIfAnotherProgramDidIt) {
    do_it(Kind::Move, {folder.file("a.txt")});
    operations::note_done_elsewhere({Kind::Move, {folder.file("b.txt")}, folder.path("to"), false},
                                    "Thunar", state);
    EXPECT_FALSE(last_done(state));
}

TEST_F(LastDoneTest, TellsWhyAnotherProgramsOperationCannotBeUndoneHere) {
    const std::string a = folder.path("a.txt"), b = folder.path("b.txt"), c = folder.path("c.txt");
    const struct {
        Kind kind;
        std::vector<std::string> sources;
        const char* line;
    } rows[] = {
        {Kind::Move,
         {a, b, c},
         "the last operation (moving \"a.txt\" and 2 others) was handed to Thunar, and can only be "
         "undone there"},
        {Kind::Copy,
         {a},
         "the last operation (copying \"a.txt\") was handed to Thunar, and can only be undone "
         "there"},
        {Kind::Alias,
         {a, b},
         "the last operation (making an alias of \"a.txt\" and 1 other) was handed to Thunar, and "
         "can only be undone there"},
        {Kind::Trash,
         {a},
         "the last operation (trashing \"a.txt\") was handed to Thunar, and can only be undone "
         "there"},
    };
    for (const auto& row : rows) {
        operations::note_done_elsewhere({row.kind, row.sources, folder.path("to"), false}, "Thunar",
                                        state);
        test::Notes notes;
        EXPECT_EQ(operations::undo_last(notes, state).outcomes.front().reason, row.line);
    }
    operations::note_done_elsewhere({Kind::Move, {}, folder.path("to"), false}, "Thunar", state);
    test::Notes notes;
    EXPECT_EQ(operations::undo_last(notes, state).outcomes.front().reason, rows[3].line)
        << "a request without files says nothing";
}

TEST_F(LastDoneTest, CountsWhatIsStillDoneOfItsKind) {
    std::filesystem::create_directories(state);
    const auto write = [&](const std::string& entries) {
        std::ofstream(operations::undo_journal_path(state))
            << operations::begun_entry("7") + entries;
    };
    const std::string moves = operations::moving_entry("/from/a", "/to/a", 1) +
                              operations::moving_entry("/from/b", "/to/b", 2);
    write(moves + operations::undone_entry(1));
    expect_done(Kind::Move, "a", 1);
    write(moves + operations::undone_entry(0));
    expect_done(Kind::Move, "b", 1);
    write(moves + operations::elsewhere_entry("handed on"));
    EXPECT_FALSE(last_done(state));
    do_it(Kind::Trash, {folder.file("x"), folder.file("y")});
    expect_done(Kind::Trash, "x", 2);
}

TEST_F(LastDoneTest, IsNothingWhereEachStepIsUndone) {
    EXPECT_FALSE(operations::done_by({}));
    std::filesystem::create_directories(state);
    std::ofstream(operations::undo_journal_path(state))
        << operations::begun_entry("7") + operations::moving_entry("/from/a", "/to/a", 1) +
               operations::undone_entry(0);
    EXPECT_FALSE(last_done(state));
    test::Notes notes;
    EXPECT_EQ(operations::undo_operation("8", notes, state).outcomes.front().reason,
              "there is nothing to undo");
}

TEST_F(LastDoneTest, CountsNoFilesInAVeryLongRecord) {
    std::filesystem::create_directories(state);
    std::ofstream journal(operations::undo_journal_path(state));
    journal << operations::begun_entry("1");
    for (int i = 0; i < 5000; i++) {
        journal << operations::moving_entry("/from/" + std::string(100, 'x'), "/to/x", 1);
    }
    journal.close();
    expect_done(Kind::Move, std::string(100, 'x'), 0);
}

}  // namespace
