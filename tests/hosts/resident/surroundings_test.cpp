#include "service/surroundings.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "resident/session.h"
#include "service/host_log.h"
#include "support/temp_folder.h"

namespace {

using operations::Descriptor;

// Each test has a folder, and a pipe that stands for a caller's output.
struct SurroundingsTest : testing::Test {
    void SetUp() override {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        reader = Descriptor(ends[0]);
        writer = Descriptor(ends[1]);
        own_output = Descriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
        own_error = Descriptor(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3));
        own_folder = Descriptor(open(".", O_PATH | O_CLOEXEC));
    }
    void TearDown() override {
        print_to(own_output.get(), own_error.get());
        begin_host_log(Descriptor());
        ASSERT_EQ(fchdir(own_folder.get()), 0);
    }
    Surroundings::Files files() const { return {own_folder.get(), writer.get(), writer.get()}; }

    test::TempFolder folder;
    Descriptor reader, writer, own_output, own_error, own_folder;
};

TEST_F(SurroundingsTest, VariablesThatACallSetsEndWithIt) {
    setenv("SET_BEFORE", "1", 1);  // the C library now has a list of its own
    const std::vector<std::string> before = resident::own_environment();
    for (int call = 0; call < 3; ++call) {
        {
            const Surroundings surroundings({"CALLER=1", "HOME=/nowhere"}, 022, files());
            EXPECT_STREQ(getenv("CALLER"), "1");
            EXPECT_EQ(getenv("SET_BEFORE"), nullptr);
            for (int i = 0; i < 200; ++i) setenv(("WITHIN_" + std::to_string(i)).c_str(), "1", 1);
        }
        EXPECT_EQ(resident::own_environment(), before);
    }
    unsetenv("SET_BEFORE");
}

TEST_F(SurroundingsTest, SayWhetherTheCallersFolderIsEntered) {
    const Descriptor there(open(folder.path("").c_str(), O_PATH | O_CLOEXEC));
    {
        const Surroundings surroundings({}, 022, {there.get(), writer.get(), writer.get()});
        EXPECT_TRUE(surroundings.has_folder());
        folder.file("here.txt", "text");
        EXPECT_EQ(access("here.txt", R_OK), 0);
    }
    const Surroundings surroundings({}, 022, {reader.get(), writer.get(), writer.get()});
    EXPECT_FALSE(surroundings.has_folder());
}

TEST_F(SurroundingsTest, WithoutALogTheStreamsLeaveTheCallersOutputToo) {
    begin_host_log(Descriptor());
    { const Surroundings surroundings({}, 022, files()); }
    printf("between two calls\n");
    fprintf(stderr, "between two calls\n");
    fflush(stdout);
    writer.close();
    char byte;
    EXPECT_EQ(read(reader.get(), &byte, 1), 0) << "nobody writes there any more";
}

}  // namespace
