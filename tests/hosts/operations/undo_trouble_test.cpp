// What changes between the checks of an undo and its steps, and journals that cannot be used.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "hosts/operations/scene.h"
#include "operations/last_done.h"
#include "operations/undo_journal.h"
#include "support/temp_folder.h"

using operations::Kind;
using operations::Outcome;
using operations::State;

namespace {

using Names = std::vector<std::string>;

// Acts when it is first asked whether it is cancelled: after all checks, before the first step.
class Meddler : public test::Notes {
  public:
    explicit Meddler(std::function<void()> action) : action_(std::move(action)) {}
    bool is_cancelled() override {
        if (action_) std::exchange(action_, nullptr)();
        return cancelled;
    }

  private:
    std::function<void()> action_;
};

class UndoTrouble : public testing::Test {
  protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        to_ = folder_.folder("to");
    }
    void perform(Kind kind, const std::string& source) {
        test::Notes notes;
        const auto report =
            operations::perform_request({kind, {source}, to_, false}, notes, state_);
        ASSERT_EQ(report.outcomes.front().state, State::Done) << report.outcomes.front().reason;
    }
    // The reason that the undo gives when the action runs before its first step.
    std::string undo(const std::function<void()>& action, State expected = State::Failed) {
        Meddler meddler(action);
        const Outcome outcome = operations::undo_last(meddler, state_).outcomes.front();
        EXPECT_EQ(outcome.state, expected) << outcome.reason;
        return outcome.reason;
    }
    // Gives the path to another file.
    static void replace(const std::string& path) {
        ASSERT_EQ(rename(path.c_str(), (path + ".before").c_str()), 0);
        test::State unused;
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0);
        close(file);
    }
    void write_journal(const std::string& entries) {
        folder_.file("state/last-operation", operations::begun_entry("7") + entries);
    }
    static ino_t inode(const std::string& path) {
        struct stat what = {};
        EXPECT_EQ(lstat(path.c_str(), &what), 0) << path;
        return what.st_ino;
    }

    test::TempFolder folder_;
    const std::string state_ = folder_.folder("state");
    std::string to_;
};

}  // namespace

TEST_F(UndoTrouble, AFileThatTakesThePlaceMeanwhileIsNotReplaced) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    EXPECT_EQ(undo([&] { folder_.file("from/a", "new"); }),
              "there is another \"a\" now where it was");
    EXPECT_EQ(test::read_file(folder_.path("from/a")), "new");
    EXPECT_EQ(test::read_file(to_ + "/a"), "moved");
}

TEST_F(UndoTrouble, AFileThatBecomesAnotherMeanwhileIsNotMoved) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    EXPECT_EQ(undo([&] { replace(to_ + "/a"); }), "\"a\" is another file now");
    EXPECT_EQ(test::names_in(folder_.path("from")), Names());
}

TEST_F(UndoTrouble, ACopyThatBecomesAnotherFileMeanwhileIsNotTrashed) {
    perform(Kind::Copy, folder_.file("from/a", "copied"));
    EXPECT_EQ(undo([&] { replace(to_ + "/a"); }), "\"a\" is another file now");
    EXPECT_EQ(test::names_in(to_), Names({"a", "a.before"}));
}

TEST_F(UndoTrouble, AFileInTheTrashThatBecomesAnotherMeanwhileIsNotRestored) {
    perform(Kind::Trash, folder_.file("from/a", "trashed"));
    EXPECT_EQ(undo([&] { replace(folder_.path("data/Trash/files/a")); }),
              "\"a\" is no longer in the trash");
    EXPECT_EQ(test::names_in(folder_.path("from")), Names());
}

TEST_F(UndoTrouble, ARestThatBecomesAnotherFileMeanwhileIsKept) {
    const std::string source = folder_.folder("from/tree"), target = folder_.folder("to/tree");
    folder_.file("from/tree/a", "a");
    folder_.file("to/tree/a", "a");
    folder_.file("to/tree/b", "b");
    write_journal(operations::copying_entry(source, target, {inode(target), 0, {}, {}, false}) +
                  operations::copied_entry() +
                  operations::emptying_entry(source, target, inode(source)));
    EXPECT_EQ(undo([&] { replace(source); }), "\"tree\" is another file now");
    EXPECT_EQ(test::names_in(target), Names({"a", "b"}));
    EXPECT_EQ(test::names_in(source + ".before"), Names({"a"}));
}

TEST_F(UndoTrouble, AStopLeavesWhatCanStillBeUndone) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    test::Notes notes;
    notes.cancelled = true;
    const auto report = operations::undo_last(notes, state_);
    EXPECT_TRUE(report.stopped);
    EXPECT_EQ(report.outcomes.front().reason, "stopped; what is left can still be undone");
    EXPECT_EQ(undo({}, State::Done), "\"a\" is back in \"" + folder_.path("from") + "\"");
}

TEST_F(UndoTrouble, ASecondNameOfTheSourceIsRemoved) {
    const std::string source = folder_.file("from/a", "bytes"), target = to_ + "/a";
    ASSERT_EQ(link(source.c_str(), target.c_str()), 0);
    write_journal(operations::moving_entry(source, target, inode(source)));
    EXPECT_EQ(undo({}, State::Done), "\"" + target + "\" is removed");
    EXPECT_EQ(test::names_in(to_), Names());
    EXPECT_EQ(test::read_file(source), "bytes");
}

TEST_F(UndoTrouble, TheLastNameOfAFileStays) {
    const std::string source = folder_.file("from/a", "bytes"), target = to_ + "/a";
    ASSERT_EQ(link(source.c_str(), target.c_str()), 0);
    write_journal(operations::moving_entry(source, target, inode(source)) +
                  operations::moving_entry(target, source, inode(source)));
    test::Notes notes;
    const auto outcomes = operations::undo_last(notes, state_).outcomes;
    ASSERT_EQ(outcomes.size(), 2u);
    EXPECT_EQ(outcomes[0].reason, "\"" + source + "\" is removed");
    EXPECT_EQ(outcomes[1].reason, "\"a\" is another file now");
    EXPECT_EQ(test::read_file(target), "bytes");
}

TEST_F(UndoTrouble, AnAliasThatBecomesAnotherFileMeanwhileIsKept) {
    perform(Kind::Alias, folder_.file("from/a", "original"));
    const Names made = test::names_in(to_);
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(undo([&] { replace(to_ + "/" + made[0]); }),
              "\"" + made[0] + "\" is another file now");
    EXPECT_EQ(test::names_in(to_).size(), 2u);
}

TEST_F(UndoTrouble, AFileThatIsBackInThePlaceOfAnAliasIsKept) {
    const std::string alias = to_ + "/alias", elsewhere = folder_.file("from/a", "bytes");
    ASSERT_EQ(symlink("/somewhere", alias.c_str()), 0);
    write_journal(operations::aliasing_entry("/somewhere", alias) +
                  operations::moving_entry(alias, elsewhere, inode(elsewhere)) +
                  operations::aliasing_entry("/somewhere", alias));
    test::Notes notes;
    EXPECT_EQ(operations::undo_last(notes, state_).outcomes.back().reason,
              "\"alias\" is another file now");
    EXPECT_EQ(test::read_file(alias), "bytes");
}

TEST_F(UndoTrouble, WhatCannotBeWrittenDownIsSaidAndIsUndone) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    EXPECT_TRUE(test::in_child([&] {
        signal(SIGXFSZ, SIG_IGN);
        const std::string reason = undo([] {
            const rlimit none = {0, 0};
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
        });
        EXPECT_EQ(reason, "cannot record what was undone: File too large");
        return true;
    }));
    EXPECT_EQ(test::read_file(folder_.path("from/a")), "moved");
}

TEST_F(UndoTrouble, AJournalThatIsReplacedMeanwhileIsNotForgotten) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    const std::string journal = operations::undo_journal_path(state_);
    undo([&] { replace(journal); }, State::Done);
    EXPECT_EQ(test::names_in(state_), Names({"last-operation", "last-operation.before"}));
}

TEST_F(UndoTrouble, AJournalThatIsALinkIsNotRead) {
    ASSERT_EQ(symlink("/dev/null", operations::undo_journal_path(state_).c_str()), 0);
    EXPECT_EQ(undo({}), "cannot read " + operations::undo_journal_path(state_) +
                            ": Too many levels of symbolic links");
}

TEST_F(UndoTrouble, AnOperationBesideAnotherHasAJournalOfItsOwn) {
    perform(Kind::Move, folder_.file("from/a", "moved"));
    const std::string journal = operations::undo_journal_path(state_);
    const int file = open(journal.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
    perform(Kind::Move, folder_.file("from/b", "moved"));
    struct stat what = {};
    ASSERT_EQ(fstat(file, &what), 0);
    EXPECT_EQ(what.st_nlink, 0u) << "the one before has no name, and is still written";
    EXPECT_NE(what.st_ino, inode(journal));
    close(file);
    EXPECT_EQ(operations::last_done(state_)->name, "b");
}

TEST_F(UndoTrouble, WithoutAPlaceForItsJournalAMoveIsDoneAndCannotBeUndone) {
    test::Notes notes;
    const std::string nowhere = folder_.file("plain") + "/state";
    const auto report = operations::perform_request(
        {Kind::Move, {folder_.file("from/a", "moved")}, to_, false}, notes, nowhere);
    EXPECT_EQ(report.outcomes.front().state, State::Done);
    EXPECT_EQ(operations::undo_last(notes, nowhere).outcomes.front().state, State::Failed);
    EXPECT_EQ(test::read_file(to_ + "/a"), "moved");
}

TEST_F(UndoTrouble, AJournalThatCannotBeWrittenFurtherUndoesNothing) {
    folder_.file("from/a", "moved");
    EXPECT_TRUE(test::in_child([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit few = {operations::begun_entry("").size() + 64, 1000};
        if (setrlimit(RLIMIT_FSIZE, &few) != 0) return false;
        perform(Kind::Move, folder_.path("from/a"));
        return true;
    }));
    EXPECT_EQ(test::read_file(to_ + "/a"), "moved");
    EXPECT_EQ(undo({}), "there is nothing to undo");
}
