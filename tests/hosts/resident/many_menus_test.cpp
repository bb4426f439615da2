// What two hundred menus leave behind in the resident host.
#include <filesystem>
#include <string>

#include "hosts/resident/scene.h"
#include "support/heap.h"
#include "support/settled.h"
#include "support/x_clients.h"

namespace fs = std::filesystem;

namespace {

long descriptors_of(pid_t process) {
    const fs::path files = "/proc/" + std::to_string(process) + "/fd";
    return std::distance(fs::directory_iterator(files), fs::directory_iterator());
}

struct Held {
    long files = 0;
    test::Resources resources;
    bool operator==(const Held&) const = default;
};

Held held_by(pid_t process) {
    Held held = {descriptors_of(process), test::resources_of(process)};
    // Xlib watches the keyboard once for each connection, from the first key that it looks up
    // there.
    EXPECT_LE(held.resources["XkbClient"], test::connections_of(process));
    held.resources.erase("XkbClient");
    return held;
}

std::string described(const Held& held) {
    std::string text = std::to_string(held.files) + " descriptors";
    for (const auto& [kind, count] : held.resources) {
        text += ", " + std::to_string(count) + " " + kind;
    }
    return text;
}

struct ManyMenus : test::ResidentScene {
    void show(int times) {
        for (int i = 0; i < times && !HasFailure(); ++i) EXPECT_EQ(show_and_close().status, 0);
    }
};

TEST_F(ManyMenus, TwoHundredMenusLeaveTheHostAsItWasAfterTheTenth) {
    constexpr int first = 10, all = 200;
    // The table of the last 4096 file references fills at first, by 1 KiB a menu.
    [[maybe_unused]] constexpr long bytes_a_menu = 2560;
    show(first);
    const pid_t process = host();
    [[maybe_unused]] const long memory = test::anonymous_memory(process);
    // The client ends before the host has put the menu away.
    const Held held = test::settled([&] { return held_by(process); }, 50);
    ASSERT_FALSE(held.resources.empty());
    show(all - first);
    EXPECT_EQ(host(), process);
    EXPECT_TRUE(test::wait_for([&] { return held_by(process) == held; }))
        << described(held_by(process)) << " instead of " << described(held);
#if !__has_feature(address_sanitizer)  // which keeps freed memory
    EXPECT_LT(test::anonymous_memory(process) - memory, (all - first) * bytes_a_menu);
#endif
}

}  // namespace
