// After a thousand popups with three levels each, GWorkspace is as large as after a hundred.
#include <unistd.h>

#include <sstream>

#include "gworkspace/viewer_desk.h"

using namespace test;

namespace {

class Endurance : public ViewerDesk {
  protected:
    long allocated() const { return atol(manager().ask("memory").c_str()); }

    long balance() const {
        long made = 0, freed = 0;
        std::string counts;
        EXPECT_TRUE(wait_until([&] { return !(counts = manager().ask("elements")).empty(); }));
        std::istringstream(counts) >> made >> freed;
        EXPECT_GT(made, 0);
        return made - freed;
    }

    void pop_up_three_levels(const Area& area) {
        move_to(area);
        input().click(3);
        ASSERT_TRUE(wait_until([&] { return is_open(0); }));
        input().key("Down");
        for (size_t level = 1; level <= 3; level++) {
            input().key("Right");
            ASSERT_TRUE(wait_until([&] { return is_open(level); })) << level;
        }
        input().key("Escape");
        ASSERT_TRUE(wait_until([&] { return is_closed(); }));
    }
};

}  // namespace

TEST_F(Endurance, AThousandPopupsLeaveNothingBehind) {
    show("browser");
    const Area area = item("browser", path("alpha"));
    for (int popup = 0; popup < 100 && !HasFatalFailure(); popup++) pop_up_three_levels(area);
    const long after_hundred = allocated();
    EXPECT_EQ(balance(), 0);
    for (int popup = 100; popup < 1000 && !HasFatalFailure(); popup++) pop_up_three_levels(area);
    const long growth = allocated() - after_hundred;
    EXPECT_LT(growth, 2 << 20);
    EXPECT_EQ(balance(), 0);
    RecordProperty("bytes_allocated_after_hundred", std::to_string(after_hundred));
    printf("after a hundred: %ld bytes; after a thousand: %+ld\n", after_hundred, growth);
}
