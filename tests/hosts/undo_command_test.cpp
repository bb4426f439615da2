// delvio undo, as a process of its own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

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
    EXPECT_EQ(undone.err, "");
    EXPECT_EQ(undone.out, "\"-a?b\xff\" is back in \"" + folder.path("from") + "\"\n");
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

TEST(UndoCommand, BringsBackWhatTheMenuMovedToTheTrash) {
    const std::string home = getenv("HOME"), one = home + "/one", two = home + "/two";
    std::ofstream(one) << "1";
    std::ofstream(two) << "2";
    EXPECT_EQ(test::run_delvio({"menu", "--pick", "Move to Trash", one, two}).status, 0);
    ASSERT_EQ(access(one.c_str(), F_OK), -1);
    const test::Outcome undone = test::run_delvio({"undo"});
    EXPECT_EQ(undone.status, 0) << undone.err;
    EXPECT_EQ(undone.out, "\"two\" is back in \"" + home + "\", out of the trash\n" +
                              "\"one\" is back in \"" + home + "\", out of the trash\n");
    EXPECT_EQ(test::read_file(one) + test::read_file(two), "12");
    unlink(one.c_str());
    unlink(two.c_str());
}

TEST(UndoCommand, TellsOfManyInAFewLines) {
    test::TempFolder folder;
    folder.folder("to");
    std::vector<std::string> sources;
    for (int index = 0; index < 50; index++) {
        sources.push_back(folder.file("from/" + std::to_string(index)));
    }
    Silent observer;
    operations::Perform({operations::Kind::Move, sources, folder.path("to"), false}, observer);
    const test::Outcome undone = test::run_delvio({"undo"});
    EXPECT_EQ(undone.status, 0);
    EXPECT_EQ(std::count(undone.out.begin(), undone.out.end(), '\n'), 20);
    EXPECT_NE(undone.out.find("\nand 31 more\n"), std::string::npos) << undone.out;
}

TEST(UndoCommand, TakesNoArguments) { EXPECT_EQ(test::run_delvio({"undo", "this"}).status, 2); }

}  // namespace
