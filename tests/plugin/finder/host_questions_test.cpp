#include "finder/dv_finder.h"

#include <host/process.h>
#include <gtest/gtest.h>
#include <sys/time.h>

#include "plugin/finder/carbon_trouble.h"
#include "plugin/tree_support.h"
#include "support/dv_log.h"

using test::output_of;

namespace {

class HostQuestion : public testing::Test {
  protected:
    ~HostQuestion() override {
        declare_process_signature(0);
        test::carbon_trouble = nullptr;
        dvEnableDebugOutput = 0;
        dvdprintf("no sink any more\n");
    }
};

TEST_F(HostQuestion, AProcessOfAnotherSignatureIsNotTheFinder) {
    EXPECT_FALSE(dv_is_finder());
    declare_process_signature(0x54455354);
    EXPECT_FALSE(dv_is_finder());
}

TEST_F(HostQuestion, TheSignatureMACSMakesTheFinder) {
    declare_process_signature(0x4D414353);
    EXPECT_TRUE(dv_is_finder());
}

TEST_F(HostQuestion, ItsLinesAreLoggedOnlyWithLoggingOn) {
    EXPECT_EQ(output_of([] { dv_is_finder(); }), "");
    dvEnableDebugOutput = 1;
    EXPECT_EQ(output_of([] { dv_is_finder(); }),
              "Delvio: Checking if this is the Finder..\nDelvio: This is NOT the Finder..\n");
    declare_process_signature(0x4D414353);
    EXPECT_EQ(output_of([] { dv_is_finder(); }),
              "Delvio: Checking if this is the Finder..\nDelvio: This is the Finder\n");
}

TEST_F(HostQuestion, AProcessThatIsUnknownIsNotTheFinder) {
    declare_process_signature(0x4D414353);
    test::carbon_trouble = test::failing("GetCurrentProcess", -600);
    EXPECT_FALSE(dv_is_finder());
    EXPECT_FALSE(dv_finder_is_front());
    dvEnableDebugOutput = 1;
    EXPECT_EQ(output_of([] { dv_is_finder(); }),
              "Delvio: Checking if this is the Finder..\nDelvio: GetCurrentProcess failed!\n");
    EXPECT_EQ(output_of([] { dv_finder_is_front(); }),
              "Delvio: Checking if we're in the Finder..\nDelvio: GetCurrentProcess failed..\n");
}

TEST(DoubleTime, IsTheTimeOfDayInSeconds) {
    timeval before, after;
    gettimeofday(&before, nullptr);
    const double now = dv_double_time();
    gettimeofday(&after, nullptr);
    EXPECT_GE(now, before.tv_sec + before.tv_usec / 1e6);
    EXPECT_LE(now, after.tv_sec + after.tv_usec / 1e6);
}

}  // namespace
