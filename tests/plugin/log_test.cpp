#include "support/dv_log.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "support/temp_folder.h"

namespace {

const char closing_line[] = "Delvio: Closing log.\n";

class Log : public testing::Test {
  protected:
    Log() : old_home_(getenv("HOME") ? getenv("HOME") : "") {
        home_.folder("Library/Logs");
        use_home(home_.path());
        set_level(0);
        dvdprintf("start without a sink\n");
    }
    ~Log() override {
        set_level(0);
        dvdprintf("end without a sink\n");
        use_home(old_home_);
    }

    static void use_home(const std::string& path) { setenv("HOME", path.c_str(), 1); }
    static void set_level(int32_t level) { dvEnableDebugOutput = level; }

    // What one message prints to standard output at the given level.
    static std::string print(int32_t level, const char* text) {
        testing::internal::CaptureStdout();
        set_level(level);
        dvdprintf("%s", text);
        fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    std::string file() const {
        if (dvLogFile) fflush(dvLogFile);
        return test::read_file(home_.path("Library/Logs/Delvio.log"));
    }

    test::TempFolder home_;

  private:
    std::string old_home_;
};

TEST_F(Log, LevelTwoAppendsToTheLogFile) {
    home_.file("Library/Logs/Delvio.log", "earlier run\n");
    EXPECT_EQ(print(2, "Delvio: one\n"), "");
    EXPECT_EQ(file(), "earlier run\nDelvio: one\n");
}

TEST_F(Log, LevelTwoCreatesTheLogFileAndKeepsItsStream) {
    print(2, "Delvio: one\n");
    FILE* first = dvLogFile;
    print(2, "Delvio: two\n");
    EXPECT_EQ(dvLogFile, first);
    EXPECT_EQ(file(), "Delvio: one\nDelvio: two\n");
}

TEST_F(Log, FromTwoToOneClosesTheFileAndGoesToStandardOutput) {
    print(2, "Delvio: one\n");
    EXPECT_EQ(print(1, "Delvio: two\n"), "Delvio: two\n");
    EXPECT_EQ(dvLogFile, stdout);
    EXPECT_EQ(file(), std::string("Delvio: one\n") + closing_line);
}

TEST_F(Log, FromOneToTwoOpensTheFileAndLeavesStandardOutputOpen) {
    EXPECT_EQ(print(1, "Delvio: one\n"), "Delvio: one\n");
    EXPECT_EQ(print(2, "Delvio: two\n"), "");
    EXPECT_EQ(file(), "Delvio: two\n");
    EXPECT_EQ(print(1, "Delvio: three\n"), "Delvio: three\n");
}

TEST_F(Log, AFileThatCannotBeOpenedLowersTheLevelToOne) {
    use_home(home_.path("missing"));
    EXPECT_EQ(print(2, "Delvio: one\n"), "Delvio: Failed to open log file '" +
                                             home_.path("missing/Library/Logs/Delvio.log") +
                                             "'\nDelvio: one\n");
    EXPECT_EQ(dvEnableDebugOutput, 1);
    EXPECT_EQ(dvLogFile, stdout);
    EXPECT_EQ(print(1, "Delvio: two\n"), "Delvio: two\n");
}

TEST_F(Log, NothingIsFlushedBeforeTheFileIsClosed) {
    const std::string path = home_.path("Library/Logs/Delvio.log");
    // Output is not captured here, because capturing flushes every stream.
    set_level(2);
    dvdprintf("Delvio: one\n");
    dvdprintf("Delvio: two\n");
    EXPECT_EQ(test::read_file(path), "");
    print(1, "Delvio: three\n");
    EXPECT_EQ(test::read_file(path), std::string("Delvio: one\nDelvio: two\n") + closing_line);
}

TEST_F(Log, ALevelRaisedAgainRetriesTheFile) {
    use_home(home_.path("missing"));
    print(2, "Delvio: one\n");
    use_home(home_.path());
    EXPECT_EQ(print(2, "Delvio: two\n"), "");
    EXPECT_EQ(file(), "Delvio: two\n");
}

TEST_F(Log, NoHomeIsAFailureToOpen) {
    unsetenv("HOME");
    EXPECT_EQ(print(2, "Delvio: one\n"),
              "Delvio: Failed to open log file 'Library/Logs/Delvio.log'\nDelvio: one\n");
    EXPECT_EQ(dvEnableDebugOutput, 1);
}

TEST_F(Log, LevelZeroClosesTheFileAndDropsTheMessage) {
    print(2, "Delvio: one\n");
    EXPECT_EQ(print(0, "Delvio: dropped\n"), "");
    EXPECT_EQ(dvLogFile, nullptr);
    EXPECT_EQ(file(), std::string("Delvio: one\n") + closing_line);
    EXPECT_EQ(print(0, "Delvio: dropped too\n"), "");
    EXPECT_EQ(file(), std::string("Delvio: one\n") + closing_line);
}

TEST_F(Log, LevelZeroAfterStandardOutputLeavesItOpen) {
    print(1, "Delvio: one\n");
    EXPECT_EQ(print(0, "Delvio: dropped\n"), "");
    EXPECT_EQ(dvLogFile, nullptr);
    EXPECT_EQ(print(1, "Delvio: two\n"), "Delvio: two\n");
}

TEST_F(Log, NothingIsAddedToAMessage) {
    EXPECT_EQ(print(1, "no newline"), "no newline");
    EXPECT_EQ(print(1, ""), "");
}

TEST_F(Log, TheResultIsTheCountOfCharacters) {
    testing::internal::CaptureStdout();
    set_level(1);
    const int written = dvdprintf("Delvio: %d %s\n", 42, "items");
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Delvio: 42 items\n");
    EXPECT_EQ(written, 17);
}

TEST_F(Log, OtherLevelsKeepTheSinkAsItIs) {
    EXPECT_EQ(print(3, "Delvio: no sink\n"), "");
    EXPECT_EQ(print(-1, "Delvio: no sink\n"), "");
    EXPECT_EQ(dvLogFile, nullptr);
    print(2, "Delvio: one\n");
    EXPECT_EQ(print(3, "Delvio: two\n"), "");
    EXPECT_EQ(file(), "Delvio: one\nDelvio: two\n");
    print(1, "Delvio: three\n");
    EXPECT_EQ(print(-1, "Delvio: four\n"), "Delvio: four\n");
}

}  // namespace
