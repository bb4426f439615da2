// What this program's windows tell window managers and compositors, and a compositor that is merely
// present.
#pragma once

#include <string>
#include <vector>

struct _XDisplay;

namespace test {

struct AnnouncedWindow {
    std::string title, type;
    bool is_unmanaged = false;
    long shadow = -1;  // width of its own shadow, the same on all sides; -1: not announced
};

// The windows that are shown and have a type.
std::vector<AnnouncedWindow> announced_windows();

// Whether all windows in the window manager's list exist; true when there is no list.
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
