// delvio undo, as a process of its own.
#include <gtest/gtest.h>
#include <unistd.h>

#include "hosts/command_runner.h"
#include "operations/engine.h"
#include "support/temp_folder.h"

namespace {

class Silent : public operations::Observer {
    void ended(const operations::Report&) override {}
};

TEST(UndoCommand, BringsBackWhatAnotherProcessMoved) {
    test::TempFolder folder;
    const std::string source = folder.file("from/-a\nb\xff", "text");
    folder.folder("to");
    Silent observer;
    operations::Perform({operations::Kind::Move, {source}, folder.path("to"), false}, observer);
    ASSERT_EQ(access(source.c_str(), F_OK), -1);
    const test::Outcome undone = test::run_delvio({"undo"});
    EXPECT_EQ(undone.status, 0);
    EXPECT_EQ(undone.out + undone.err, "");
    EXPECT_EQ(test::read_file(source), "text");

    const test::Outcome again = test::run_delvio({"undo"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err, "delvio: cannot undo: there is nothing to undo\n");
}

TEST(UndoCommand, SaysWhatStandsInTheWay) {
    test::TempFolder folder;
    const std::string source = folder.file("from/a.txt", "text");
    folder.folder("to");
    Silent observer;
    operations::Perform({operations::Kind::Move, {source}, folder.path("to"), false}, observer);
    folder.file("from/a.txt", "another");
    const test::Outcome refused = test::run_delvio({"undo"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "delvio: cannot undo: there is another \"a.txt\" now where it was\n");
    EXPECT_EQ(test::read_file(folder.path("to/a.txt")), "text");
}

TEST(UndoCommand, TakesNoArguments) { EXPECT_EQ(test::run_delvio({"undo", "this"}).status, 2); }

}  // namespace
