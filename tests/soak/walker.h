// A hand that does something at random with an open menu: the same for the same seed.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "support/x_input.h"

namespace soak {

struct Spot {
    int x = 0, y = 0, width = 0, height = 0;
};

class Walker {
  public:
    Walker(unsigned long seed, test::XInput& input) : random_(seed), input_(input) {}

    // A number from 0 to below `end`.
    int any(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
    bool one_in(int times) { return any(times) == 0; }
    const std::string& one_of(const std::vector<std::string>& words) {
        return words[static_cast<size_t>(any(static_cast<int>(words.size())))];
    }

    // A key, a move within the menu, a wheel, or a modifier that is held from now on.
    void step(const Spot& menu);
    // Escape, a click beside the menu, a pick by key or mouse, or a drag out of the menu.
    void end(const Spot& menu);
    // Files come, go and change in the folder.
    void change_files(test::TempFolder& folder, const std::string& name);

    // What was done since begin(), for the message of a walk that fails. With DELVIO_SOAK_TELL
    // each walk's is printed, as what an earlier walk has opened may only now be in the way.
    const std::string& story() const { return story_; }
    void begin();
    void tell(const std::string& what) { story_ += what + "; "; }

  private:
    void move_into(const Spot& menu);
    void drag(const Spot& menu);

    std::mt19937_64 random_;
    test::XInput& input_;
    std::string story_;
    int begun_ = 0;
};

// What a process holds.
struct Held {
    long files = 0, threads = 0;
    int resources = 0;  // of the X server
    long memory = 0;    // its own, in bytes
    std::vector<std::string> open_files;
};
Held held_by(int process);
// Once its files and resources no longer change: a menu is put away after its client has ended.
Held settled(int process);
// Beyond what a process held at first: what it opens once, when something is first done. A leak in
// one of some walks is more.
inline constexpr int files_opened_once = 8, resources_made_once = 30, threads_made_once = 4;
// In bytes: tables that fill up, such as the last files that were looked at, and some 100 bytes a
// menu that the toolkit never gives back. In 1000 walks a leak of 8 KiB in one of two is more.
inline constexpr long memory_kept = 4 << 20;

// Fails the test when a process holds more than it did at first.
void expect_no_more(const Held& now, const Held& first);

// What is in a folder and below it.
std::vector<std::string> files_below(const std::string& folder);

// Prints what a process holds.
void tell_held(int number, const Held& held);

// The walks to make: DELVIO_SOAK_WALKS, or so many.
int walks(int usual);
// DELVIO_SOAK_SEED, or the suite's; it is printed.
unsigned long seed();

}  // namespace soak
