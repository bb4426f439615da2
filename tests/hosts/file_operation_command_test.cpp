// delvio menu --pick with file operations: the result, the output, and the exit status.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

using test::Outcome;
using test::read_file;
using Words = std::vector<std::string>;

constexpr int exit_skipped = 3;

struct FileOperationCommand : testing::Test {
    test::TempFolder folder;

    void SetUp() override {
        folder.folder("to/below");
        folder.file("a.txt", "new a");
        folder.file("b.txt", "b");
    }
    // Picks a row in the level of "to", or of "below", for the folder and both files.
    Outcome pick(const std::string& row, const Words& options = {}, const Words& way = {"to"}) {
        Words words = {"menu"};
        words.insert(words.end(), options.begin(), options.end());
        for (const std::string& title : way) words.insert(words.end(), {"--pick", title});
        words.insert(words.end(), {"--pick", row});
        for (const char* name : {"to", "a.txt", "b.txt"}) words.push_back(folder.path(name));
        return test::run_delvio(words);
    }
    bool is_there(const std::string& name) const {
        return fs::exists(fs::symlink_status(folder.path(name)));
    }
};

}  // namespace

TEST_F(FileOperationCommand, MovesWithoutAWord) {
    const Outcome outcome = pick("Move selection here", {}, {"to", "below"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(read_file(folder.path("to/below/a.txt")), "new a");
    EXPECT_EQ(read_file(folder.path("to/below/b.txt")), "b");
    EXPECT_FALSE(is_there("a.txt"));
}

TEST_F(FileOperationCommand, CopiesWithOptionAndLinksWithShift) {
    EXPECT_EQ(pick("Copy selection here", {"--modifiers", "option"}).status, 0);
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "new a");
    EXPECT_EQ(read_file(folder.path("a.txt")), "new a");
    // With Shift held from the start the menu is the host's own, so a row that needs a key is
    // picked by its title.
    EXPECT_EQ(pick("Alias selection here", {}, {"to", "below"}).status, 0);
    for (const char* name : {"a.txt", "b.txt", "to"}) {
        EXPECT_TRUE(fs::equivalent(folder.path("to/below/") + name, folder.path(name)));
        EXPECT_TRUE(fs::is_symlink(folder.path("to/below/") + name));
    }
}

TEST_F(FileOperationCommand, WhatIsTakenIsSkippedAndTold) {
    folder.file("to/a.txt", "old a");
    const Outcome outcome = pick("Move selection here");
    EXPECT_EQ(outcome.status, exit_skipped);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find("delvio: skipped \"" + folder.path("a.txt") + "\""), 0u)
        << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "old a");
    EXPECT_EQ(read_file(folder.path("a.txt")), "new a");
    EXPECT_EQ(read_file(folder.path("to/b.txt")), "b");
    EXPECT_FALSE(is_there("b.txt"));
}

TEST_F(FileOperationCommand, ReplaceAnswersTheQuestion) {
    folder.file("to/a.txt", "old a");
    const Outcome outcome = pick("Move selection here", {"--replace"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(read_file(folder.path("to/a.txt")), "new a");
    EXPECT_FALSE(is_there("a.txt"));
}

TEST_F(FileOperationCommand, TheAnswerStandsInTheEvent) {
    folder.file("to/a.txt", "old a");
    const std::string trace = folder.path("trace");
    Words words = {"menu",
                   "--pick",
                   "to",
                   "--pick",
                   "Move selection here",
                   folder.path("to"),
                   folder.path("a.txt")};
    EXPECT_EQ(test::run_delvio(words, {{"DELVIO_TRACE", trace}}).status, exit_skipped);
    words.insert(words.begin() + 1, "--replace");
    EXPECT_EQ(test::run_delvio(words, {{"DELVIO_TRACE", trace}}).status, 0);
    const std::string head = "core/move to \"MACS\"\n  insh: alis \"" + folder.path("to") +
                             "\"\n  ----: list of 1\n    alis \"" + folder.path("a.txt") +
                             "\"\n  alrp: bool ";
    EXPECT_EQ(read_file(trace), head + "false\n" + head + "true\n");
}

TEST_F(FileOperationCommand, WhatFailsIsToldAndFails) {
    // A place where nobody can put a file.
    const Outcome outcome = pick("Copy selection here",
                                 {"--modifiers", "option", "--setting", "folders=/proc"}, {"proc"});
    EXPECT_EQ(outcome.status, 1);
    for (const char* name : {"to", "a.txt", "b.txt"}) {
        EXPECT_NE(outcome.err.find("delvio: failed: \"" + folder.path(name) + "\": "),
                  std::string::npos)
            << outcome.err;
    }
    EXPECT_EQ(read_file(folder.path("a.txt")), "new a");
}

TEST_F(FileOperationCommand, ASignalLeavesNothingHalfDone) {
    for (int number = 0; number < 5000; number++) {
        folder.file("a.d/" + std::to_string(number), "text");
    }
    const auto temporaries = [this] {
        size_t count = 0;
        for (const auto& entry : fs::directory_iterator(folder.path("to"))) {
            count += entry.path().filename().string().rfind(".delvio-", 0) == 0;
        }
        return count;
    };
    test::RunningCommand command({"menu", "--modifiers", "option", "--pick", "to", "--pick",
                                  "Copy selection here", folder.path("to"), folder.path("a.d")});
    for (int turn = 0; turn < 120000 && temporaries() == 0; turn++) usleep(500);
    EXPECT_EQ(temporaries(), 1u) << "the copy has begun";
    command.send_signal(SIGTERM);
    EXPECT_EQ(command.finish().status, 128 + SIGTERM);
    EXPECT_EQ(temporaries(), 0u);
    EXPECT_FALSE(is_there("to/a.d"));
    EXPECT_EQ(read_file(folder.path("a.d/4999")), "text");
}

TEST_F(FileOperationCommand, ReplaceNeedsAPick) {
    const Outcome outcome = test::run_delvio({"menu", "--replace", folder.path("a.txt")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("--replace needs --pick"), std::string::npos);
}

TEST_F(FileOperationCommand, OddNamesArrive) {
    const std::string odd[] = {"-rf", "line\nbreak", std::string(255, 'n')};
    Words words = {"menu", "--pick",         "to", "--pick", "Move selection here",
                   "--",   folder.path("to")};
    for (const std::string& name : odd) words.push_back(folder.file(name, "text"));
    const Outcome outcome = test::run_delvio(words);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    for (const std::string& name : odd) {
        EXPECT_EQ(read_file(folder.path("to/") + name), "text") << name;
        EXPECT_FALSE(is_there(name));
    }
}

TEST_F(FileOperationCommand, ANameThatIsNotUtf8IsRefusedBeforeAnythingIsTouched) {
    const std::string odd = folder.file("odd\xff", "text");
    const Outcome outcome =
        test::run_delvio({"menu", "--pick", "to", "--pick", "Move selection here",
                          folder.path("to"), folder.path("a.txt"), odd});
    EXPECT_NE(outcome.err.find("is not UTF-8"), std::string::npos) << outcome.err;
    EXPECT_EQ(read_file(odd), "text");
}
