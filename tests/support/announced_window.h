// What the windows of this program tell window managers and compositors, and a compositor that does
// no more than to be there.
#pragma once

#include <string>
#include <vector>

struct _XDisplay;

namespace test {

struct AnnouncedWindow {
    std::string title, type;
    bool is_unmanaged = false;
    long shadow = -1;  // how far one reaches that it draws itself, alike on all sides; -1: not told
};

// Those that are shown and have a type.
std::vector<AnnouncedWindow> announced_windows();

// Whether the windows that the window manager lists are all there; also where none lists any.
bool listed_windows_are_there();

class Compositor {
  public:
    Compositor();
    ~Compositor();
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

  private:
    _XDisplay* display_;
};

}  // namespace test
