// delvio undo, run as a separate process.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "file_steps/folder.h"
#include "file_steps/temporaries.h"
#include "hosts/command_runner.h"
#include "hosts/operations/scene.h"
#include "operations/engine.h"
#include "support/silent_file_system.h"
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
    operations::perform_request({operations::Kind::Move, {source}, folder.path("to"), false},
                                observer);
    ASSERT_EQ(access(source.c_str(), F_OK), -1);
    const test::Outcome undone = test::run_delvio({"undo"});
    EXPECT_EQ(undone.status, 0);
    EXPECT_EQ(undone.err, "");
    EXPECT_EQ(undone.out, "\"-a\\nb\\xff\" is back in \"" + folder.path("from") + "\"\n");
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
    operations::perform_request({operations::Kind::Move, {source}, folder.path("to"), false},
                                observer);
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
    operations::perform_request({operations::Kind::Move, sources, folder.path("to"), false},
                                observer);
    const test::Outcome undone = test::run_delvio({"undo"});
    EXPECT_EQ(undone.status, 0);
    EXPECT_EQ(std::count(undone.out.begin(), undone.out.end(), '\n'), 20);
    EXPECT_NE(undone.out.find("\nand 31 more\n"), std::string::npos) << undone.out;
}

TEST(UndoCommand, AndEveryOtherCommandStartsWhateverALeftOverWaitsFor) {
    test::TempFolder folder;
    const std::string silent = folder.folder("silent"), plain = folder.folder("plain");
    const bool mounted = test::in_child([&] {
        const pid_t server = test::mount_silent_file_system(silent, test::Silence::at_lookup);
        if (server == 0) return false;
        const std::string journals = operations::default_state_folder() + "/temporaries";
        operations::make_folders(journals);
        const std::string journal = journals + "/delvio-0123456789abcdef";
        std::ofstream(journal) << "0\n" << silent << "/away";
        // As a stopped operation of an older version left it.
        std::ofstream(journals + "/lock") << "";
        const int lock = open((journals + "/lock").c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(flock(lock, LOCK_EX), 0);
        EXPECT_EQ(test::run_delvio({"undo"}).status, 1);
        EXPECT_EQ(test::run_delvio({"settings", "list"}).status, 0);
        EXPECT_EQ(test::run_delvio({"menu", "--print", plain}).status, 0);
        close(lock);
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
        unlink(journal.c_str());
        return true;
    });
    if (!mounted) GTEST_SKIP() << "nobody may mount a file system here";
}

TEST(UndoCommand, ClearsWhatAKilledOperationLeft) {
    test::TempFolder folder;
    const std::string to = folder.folder("to");
    EXPECT_TRUE(test::in_child([&] {
        const int open_folder = open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const pid_t child = fork();
        if (child == 0) {
            const operations::Temporaries temporaries(operations::default_state_folder(),
                                                      open_folder);
            std::ofstream(to + "/" + temporaries.prefix() + "0") << "half";
            raise(SIGKILL);
        }
        waitpid(child, nullptr, 0);
        return true;
    }));
    ASSERT_EQ(test::names_in(to).size(), 1u);
    test::run_delvio({"undo"});
    while (!test::names_in(to).empty()) usleep(10000);
}

TEST(UndoCommand, TakesNoArguments) { EXPECT_EQ(test::run_delvio({"undo", "this"}).status, 2); }

}  // namespace
