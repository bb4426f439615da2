#include "soak/walker.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "support/heap.h"
#include "support/settled.h"
#include "support/x_clients.h"

namespace fs = std::filesystem;

namespace soak {

namespace {

const std::vector<std::string> keys = {"Down", "Down", "Down", "Right", "Right", "Right",
                                       "Left", "Up",   "Home", "End",   "a",     "s"};
const std::vector<std::string> modifiers = {"Alt_L", "Super_L", "Shift_L", "Control_L"};

}  // namespace

void Walker::begin() {
    if (getenv("DELVIO_SOAK_TELL") && begun_ > 0) {
        printf("walk %d: %s\n", begun_ - 1, story_.c_str());
        fflush(stdout);
    }
    begun_++;
    story_.clear();
}

void Walker::move_into(const Spot& menu) {
    const int x = menu.x + any(std::max(menu.width, 1)), y = menu.y + any(std::max(menu.height, 1));
    tell("to " + std::to_string(x) + "," + std::to_string(y));
    input_.move(x, y);
}

void Walker::step(const Spot& menu) {
    const int choice = any(10);
    if (choice < 5) {
        const std::string& key = one_of(keys);
        tell(key);
        input_.key(key);
    } else if (choice < 8) {
        move_into(menu);
    } else if (choice == 8) {
        tell("wheel");
        input_.click(4 + any(2));
    } else {
        const std::string& key = one_of(modifiers);
        tell("holds " + key);
        input_.key_down(key);
        if (one_in(2)) input_.key_up(key);
    }
}

void Walker::drag(const Spot& menu) {
    tell("drag");
    move_into(menu);
    input_.key_down("Super_L");
    input_.press(1);
    input_.move(20 + any(200), 400 + any(200));
    input_.key_up("Super_L");
    input_.move(20 + any(200), 400 + any(200));
    input_.release(1);
}

void Walker::end(const Spot& menu) {
    const int choice = any(10);
    if (choice < 4) {
        tell("Escape");
        input_.key("Escape");
    } else if (choice < 6) {
        tell("click beside");
        input_.move(5, 700);
        input_.click(1);
    } else if (choice == 6) {
        tell("Return");
        input_.key("Return");
    } else if (choice < 9) {
        move_into(menu);
        tell("click");
        input_.click(1);
    } else {
        drag(menu);
    }
}

void Walker::change_files(test::TempFolder& folder, const std::string& name) {
    const std::string file = name + "/changing " + std::to_string(any(5));
    std::error_code error;
    tell("changes " + file);
    if (one_in(3)) {
        fs::remove_all(folder.path(file), error);
    } else if (one_in(2)) {
        fs::rename(folder.path(file), folder.path(file) + " moved", error);
    } else if (!fs::exists(folder.path(file), error)) {
        folder.file(file, std::string(static_cast<size_t>(any(5000)), 'x'));
    }
}

Held held_by(int process) {
    const std::string place = "/proc/" + std::to_string(process);
    Held held;
    std::error_code error;
    for (const auto& file : fs::directory_iterator(place + "/fd", error)) {
        held.files++;
        held.open_files.push_back(fs::read_symlink(file, error).string());
    }
    const fs::directory_iterator tasks(place + "/task", error);
    held.threads = std::distance(fs::begin(tasks), fs::end(tasks));
    for (const auto& [kind, count] : test::resources_of(process)) {
        // The toolkit makes a counter for each window and never destroys it.
        if (kind != "SyncCounter") held.resources += count;
    }
    held.memory = test::anonymous_memory(process);
    return held;
}

Held settled(int process) {
    test::settled([&] {
        const Held held = held_by(process);
        return std::pair(held.files, held.resources);
    });
    return held_by(process);
}

void expect_no_more(const Held& now, const Held& first) {
    EXPECT_LE(now.files, first.files + files_opened_once);
    EXPECT_LE(now.threads, first.threads + threads_made_once);
    EXPECT_LE(now.resources, first.resources + resources_made_once);
    // The sanitizer keeps what was freed.
    if (!test::has_sanitizers_heap()) EXPECT_LE(now.memory, first.memory + memory_kept);
}

void tell_held(int number, const Held& held) {
    printf("after %d walks: %ld open files, %ld threads, %d X resources, %ld KiB\n", number,
           held.files, held.threads, held.resources, held.memory >> 10);
    fflush(stdout);
}

std::vector<std::string> files_below(const std::string& folder) {
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        found.push_back(entry.path());
    }
    std::sort(found.begin(), found.end());
    return found;
}

int walks(int usual) {
    const char* const wanted = getenv("DELVIO_SOAK_WALKS");
    return wanted ? std::max(1, atoi(wanted)) : usual;
}

unsigned long seed() {
    const char* const wanted = getenv("DELVIO_SOAK_SEED");
    const unsigned long seed = wanted ? strtoul(wanted, nullptr, 10) : 17;
    printf("seed %lu (again with DELVIO_SOAK_SEED=%lu)\n", seed, seed);
    fflush(stdout);
    return seed;
}

}  // namespace soak
