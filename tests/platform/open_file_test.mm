#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "support/app.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"

namespace {

using Arguments = std::vector<std::string>;

// A user whose programs for texts and folders record what they get. The desktop's folders are those
// of the isolated run; the test fills them once, before GIO reads them.
class OpenFile : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        program = new test::RecordingProgram({"text/plain", "inode/directory"}, "%u");
        const std::string data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
        std::ofstream(data + "/applications/missing.desktop")
            << "[Desktop Entry]\nType=Application\nName=Missing\nExec=/no/such/program "
               "%u\nMimeType=application/x-nintendo-ds-rom;\n";
        std::ofstream(data + "/applications/removed.desktop")
            << application("--removed %u") + "Hidden=true\n";
        std::ofstream(config + "/mimeapps.list", std::ios::app)
            << "application/x-nintendo-ds-rom=missing.desktop\n"
               "application/x-nes-rom=removed.desktop\n"
               "[Added Associations]\ntext/plain=record.desktop\n"
               "application/x-nes-rom=record.desktop\n";
    }
    static void TearDownTestSuite() { delete program; }
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        program->forget();
    }
    void TearDown() override { [pool release]; }

    static bool open(const std::string& path) {
        return
            [[NSWorkspace sharedWorkspace] openFile:[NSString stringWithUTF8String:path.c_str()]];
    }
    static std::string application(const std::string& arguments) {
        return "[Desktop Entry]\nType=Application\nName=Holiday photo.jpg\nIcon=image-x-generic\n"
               "Exec=" +
               program->path() + " " + arguments + "\n";
    }
    // The arguments of the program, when it was started.
    static Arguments record() { return program->wait(); }

    static test::RecordingProgram* program;
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

test::RecordingProgram* OpenFile::program;

}  // namespace

TEST_F(OpenFile, ATextGoesToItsProgramFromTheHomeFolder) {
    const std::string path = folder.file("plain.txt", "hello");
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({path}));
    EXPECT_EQ(program->working_folder(), getenv("HOME"));
}

TEST_F(OpenFile, AProgramThatTheUserHasRemovedIsNotStarted) {
    const std::string path = folder.file("game.nes", "game");
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({path}));
}

TEST_F(OpenFile, TheProgramGetsNoneOfOurDescriptors) {
    const int leaked = ::open("/dev/null", 0);
    const int high = fcntl(leaked, F_DUPFD, 90);
    ASSERT_TRUE(open(folder.file("a.txt", "x")));
    ASSERT_FALSE(record().empty());
    EXPECT_TRUE(program->descriptors().contains(1));
    EXPECT_FALSE(program->descriptors().contains(90));
    close(high);
    close(leaked);
}

TEST_F(OpenFile, ProgramsThatEndLeaveNoChildBehind) {
    ASSERT_TRUE(open(folder.file("a.txt", "x")));
    ASSERT_FALSE(record().empty());
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) == 0) usleep(10000);  // one still runs
    EXPECT_EQ(ended, -1) << "there is none any more, and none was left to us";
}

TEST_F(OpenFile, BlanksNewlinesAndPercentSignsArriveAsTheyAre) {
    ASSERT_TRUE(open(folder.file("a b%20c\nd.txt", "x")));
    EXPECT_EQ(record(), Arguments({folder.path() + "/a b%20c\nd.txt"}));
}

TEST_F(OpenFile, BytesThatAreNoTextGoThroughAFileUrl) {
    folder.file("caf\xe9.txt", "x");
    const std::string uri = "file://" + folder.path() + "/caf%E9.txt";
    ASSERT_TRUE(open(uri));
    EXPECT_EQ(record(), Arguments({folder.path() + "/caf\xe9.txt"}));
}

TEST_F(OpenFile, AFolderOpensInTheFileManager) {
    ASSERT_TRUE(open(folder.folder("sub")));
    EXPECT_EQ(record(), Arguments({folder.path() + "/sub"}));
}

TEST_F(OpenFile, AnExecutableScriptIsShownAndNotRun) {
    const std::string path =
        folder.file("run.sh", "#!/bin/sh\ntouch " + folder.path() + "/was-run\n");
    chmod(path.c_str(), 0755);
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({path}));
    EXPECT_NE(access((folder.path() + "/was-run").c_str(), F_OK), 0);
}

TEST_F(OpenFile, AnEntryOfTheDesktopsOwnStartsTheApplication) {
    const std::string path = std::string(getenv("XDG_DATA_HOME")) + "/applications/app.desktop";
    std::ofstream(path) << application("one started");
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({"one", "started"}));
    program->forget();
    ASSERT_TRUE(open(folder.link("a link", path)));
    EXPECT_EQ(record(), Arguments({"one", "started"}));
    unlink(path.c_str());
}

TEST_F(OpenFile, AStrangersEntryIsATextAndIsNotRun) {
    const std::string names[] = {"Holiday photo.jpg.desktop", "without an ending"};
    for (const std::string& name : names) {
        program->forget();
        const std::string path = folder.file(name, application("was run"));
        ASSERT_TRUE(open(path));
        EXPECT_EQ(record(), Arguments({path}));
    }
}

// A disk may give the number of a removed entry to the next file at once; a second name of the
// entry's own file has that number in any case.
TEST_F(OpenFile, AFileWithTheNumberOfARemovedEntryIsATextAndIsNotRun) {
    const std::string path = std::string(getenv("XDG_DATA_HOME")) + "/applications/gone.desktop";
    const std::string other = folder.path("kept.desktop");
    std::ofstream(path) << application("one started");
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({"one", "started"}));
    program->forget();
    ASSERT_EQ(link(path.c_str(), other.c_str()), 0);
    // Checks at once, while the list of entries with this one in it is fresh.
    ASSERT_TRUE(open(path));
    unlink(path.c_str());
    ASSERT_TRUE(open(other));
    for (int i = 0; i < 6000 && program->opened().size() < 3; i++) usleep(10000);
    Arguments all = program->opened();
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, Arguments({other, "one", "started"}));
}

TEST_F(OpenFile, AnEntryThatTheUserMayExecuteIsRunUnlessItIsHidden) {
    const std::string path = folder.file("mine.desktop", application("was run"));
    chmod(path.c_str(), 0755);
    ASSERT_TRUE(open(path));
    EXPECT_EQ(record(), Arguments({"was", "run"}));
    for (const char* line : {"Hidden=true\n", "NoDisplay=true\n"}) {
        program->forget();
        folder.file("mine.desktop", application("was run") + line);
        ASSERT_TRUE(open(path));
        EXPECT_EQ(record(), Arguments({path})) << line;
    }
}

TEST_F(OpenFile, AnApplicationBundleIsStarted) {
    const std::string tool =
        folder.file("Tool.app/Tool", "#!/bin/sh\nexec '" + program->path() + "' bundle\n");
    chmod(tool.c_str(), 0755);
    folder.file("Tool.app/Resources/Info-gnustep.plist", "{ NSExecutable = Tool; }\n");
    ASSERT_TRUE(open(folder.path("Tool.app")));
    EXPECT_EQ(record(), Arguments({"bundle"}));
    EXPECT_EQ(program->working_folder(), getenv("HOME"));
}

TEST_F(OpenFile, WhatCannotBeOpenedSaysSo) {
    EXPECT_FALSE(open(folder.path("missing.txt")));
    EXPECT_FALSE(open(folder.link("dangling.txt", "nowhere")));
    EXPECT_FALSE(open(folder.file("unknown.qqq", std::string("\0\1\2\3", 4))));
    EXPECT_FALSE(open(folder.file("game.nds", "x")));
    EXPECT_FALSE([[NSWorkspace sharedWorkspace] openFile:nil]);
    EXPECT_FALSE([[NSWorkspace sharedWorkspace] openFile:@""]);
}

TEST_F(OpenFile, AFifoIsNeverWaitedFor) {
    const std::string path = folder.path("fifo.txt");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(open(path));
}
