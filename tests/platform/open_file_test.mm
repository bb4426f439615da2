#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "support/app.h"
#include "support/temp_folder.h"

namespace {

// A user whose programs for texts and folders write down what they are given. The desktop's
// folders are those of the isolated run; they are filled once, before GIO looks.
class OpenFile : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        const std::string data = getenv("XDG_DATA_HOME"), config = getenv("XDG_CONFIG_HOME");
        const std::string recorder = data + "/recorder";
        write(recorder, "#!/bin/sh\n"
                        "{ pwd; ls /proc/$$/fd | tr '\\n' ' '; echo; for a; do printf '%s\\036' "
                        "\"$a\"; done; } >\"$XDG_DATA_HOME/record.new\" 2>&1\n"
                        "mv \"$XDG_DATA_HOME/record.new\" \"$XDG_DATA_HOME/record\"\n");
        chmod(recorder.c_str(), 0755);
        mkdir((data + "/applications").c_str(), 0755);
        write(data + "/applications/recorder.desktop",
              "[Desktop Entry]\nType=Application\nName=Recorder\nExec=" + recorder +
                  " opened %u\nMimeType=text/plain;inode/directory;\n");
        write(data + "/applications/missing.desktop",
              "[Desktop Entry]\nType=Application\nName=Missing\nExec=/no/such/program "
              "%u\nMimeType=application/x-nintendo-ds-rom;\n");
        write(config + "/mimeapps.list",
              "[Default Applications]\ntext/plain=recorder.desktop\n"
              "inode/directory=recorder.desktop\napplication/x-nintendo-ds-rom=missing.desktop\n"
              "[Added Associations]\ntext/plain=recorder.desktop\n");
    }
    void SetUp() override {
        pool = [NSAutoreleasePool new];
        unlink(record_path().c_str());
    }
    void TearDown() override { [pool release]; }

    static void write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static std::string record_path() { return std::string(getenv("XDG_DATA_HOME")) + "/record"; }

    // What the program wrote down, when it has; empty after ten seconds without.
    static std::string record() {
        for (int i = 0; i < 1000; i++) {
            const std::string text = test::read_file(record_path());
            if (!text.empty()) return text;
            usleep(10000);
        }
        return "";
    }
    static bool open(const std::string& path) {
        return
            [[NSWorkspace sharedWorkspace] openFile:[NSString stringWithUTF8String:path.c_str()]];
    }
    static std::string last_argument(const std::string& text) {
        if (text.empty() || text.back() != '\036') return "no argument: " + text;
        const std::string arguments = text.substr(0, text.size() - 1);
        return arguments.substr(arguments.rfind('\036') + 1);
    }
    NSAutoreleasePool* pool;
    test::TempFolder folder;
};

}  // namespace

TEST_F(OpenFile, ATextGoesToItsProgramFromTheHomeFolder) {
    const std::string path = folder.file("plain.txt", "hello");
    ASSERT_TRUE(open(path));
    const std::string text = record();
    EXPECT_EQ(last_argument(text), path);
    EXPECT_EQ(text.substr(0, text.find('\n')), getenv("HOME"));
}

TEST_F(OpenFile, TheProgramGetsNoneOfOurDescriptors) {
    const int leaked = ::open("/dev/null", 0);
    const int high = fcntl(leaked, F_DUPFD, 90);
    ASSERT_TRUE(open(folder.file("a.txt", "x")));
    const std::string text = record();
    EXPECT_EQ(text.find(" 90 "), std::string::npos) << text;
    close(high);
    close(leaked);
}

TEST_F(OpenFile, ProgramsThatEndLeaveNoChildBehind) {
    ASSERT_TRUE(open(folder.file("a.txt", "x")));
    ASSERT_FALSE(record().empty());
    usleep(50000);
    int status = 0;
    EXPECT_LE(waitpid(-1, &status, WNOHANG), 0);
}

TEST_F(OpenFile, BlanksNewlinesAndPercentSignsArriveAsTheyAre) {
    ASSERT_TRUE(open(folder.file("a b%20c\nd.txt", "x")));
    EXPECT_EQ(last_argument(record()), folder.path() + "/a b%20c\nd.txt");
}

TEST_F(OpenFile, BytesThatAreNoTextGoThroughAFileUrl) {
    folder.file("caf\xe9.txt", "x");
    const std::string uri = "file://" + folder.path() + "/caf%E9.txt";
    ASSERT_TRUE(open(uri));
    EXPECT_EQ(last_argument(record()), folder.path() + "/caf\xe9.txt");
}

TEST_F(OpenFile, AFolderOpensInTheFileManager) {
    ASSERT_TRUE(open(folder.folder("sub")));
    EXPECT_EQ(last_argument(record()), folder.path() + "/sub");
}

TEST_F(OpenFile, AnExecutableScriptIsShownAndNotRun) {
    const std::string path =
        folder.file("run.sh", "#!/bin/sh\ntouch " + folder.path() + "/was-run\n");
    chmod(path.c_str(), 0755);
    ASSERT_TRUE(open(path));
    EXPECT_EQ(last_argument(record()), path);
    EXPECT_NE(access((folder.path() + "/was-run").c_str(), F_OK), 0);
}

TEST_F(OpenFile, AnApplicationEntryStartsTheApplication) {
    const std::string recorder = std::string(getenv("XDG_DATA_HOME")) + "/recorder";
    ASSERT_TRUE(open(folder.file(
        "app.desktop",
        "[Desktop Entry]\nType=Application\nName=App\nExec=" + recorder + " one started\n")));
    EXPECT_EQ(last_argument(record()), "started");
}

TEST_F(OpenFile, AnApplicationBundleIsStarted) {
    const std::string recorder = std::string(getenv("XDG_DATA_HOME")) + "/recorder";
    const std::string program =
        folder.file("Tool.app/Tool", "#!/bin/sh\nexec '" + recorder + "' bundle\n");
    chmod(program.c_str(), 0755);
    folder.file("Tool.app/Resources/Info-gnustep.plist", "{ NSExecutable = Tool; }\n");
    ASSERT_TRUE(open(folder.path("Tool.app")));
    const std::string text = record();
    EXPECT_NE(text.find("\nbundle\036"), std::string::npos) << text;
    EXPECT_EQ(text.substr(0, text.find('\n')), getenv("HOME"));
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
