// What is on the display: its pixels, and the menus of any program. Uses its own connection and
// grabs nothing.
#pragma once

#include <functional>
#include <set>
#include <vector>

struct _XDisplay;

namespace test {

struct Rectangle {
    int left = 0, top = 0, width = 0, height = 0;
};

struct Pixels {
    int width = 0, height = 0;
    std::vector<unsigned> colors;
    bool operator==(const Pixels&) const = default;
};

// The smallest rectangle within `bounds` that holds all pixels that differ.
Rectangle difference(const Pixels& one, const Pixels& other, const Rectangle& bounds);

// False when the condition did not become true within two minutes.
bool becomes_true(const std::function<bool()>& condition);

class Screen {
  public:
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    Pixels now() const;
    // Once nothing has changed for a while.
    Pixels settled() const;
    // The shown windows that no window manager manages.
    std::set<unsigned long> menus() const;
    Rectangle place_of(unsigned long window) const;

  private:
    _XDisplay* display_;
};

}  // namespace test
