// Sessions that are not, or not wholly, Wayland's.
#include <gtest/gtest.h>

#include <fstream>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"
#include "support/x_input.h"
#include "support/waiting.h"

namespace {

using test::wait_for;

bool has_loaded(int process, const std::string& library) {
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(library) != std::string::npos) return true;
    }
    return false;
}

// The menu works on the test's X server, and Wayland's libraries are not loaded.
void expect_plain_menu(const test::Changes& environment) {
    test::TempFolder folder;
    test::XInput input;
    test::RunningCommand command({"menu", folder.folder("top")}, environment);
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    EXPECT_TRUE(has_loaded(command.process(), "libdelvio-platform"));
    EXPECT_FALSE(has_loaded(command.process(), "libdelvio-wayland"));
    EXPECT_FALSE(has_loaded(command.process(), "libwayland-client"));
    input.key("Escape");
    EXPECT_EQ(command.finish().status, 0);
}

TEST(Sessions, AnXSessionLoadsNothingOfWayland) { expect_plain_menu({{"WAYLAND_DISPLAY", ""}}); }

TEST(Sessions, AnXServerOfItsOwnInAWaylandSessionIsLikeAnyOther) {
    expect_plain_menu({{"WAYLAND_DISPLAY", "wayland-0"}});
}

TEST(Sessions, WithoutXwaylandOneLineSaysSo) {
    test::TempFolder folder;
    const test::Outcome outcome = test::run_delvio(
        {"menu", folder.folder("top")}, {{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", ""}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.rfind("delvio: ", 0), 0u) << outcome.err;
    EXPECT_NE(outcome.err.find("Xwayland"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
}

}  // namespace
