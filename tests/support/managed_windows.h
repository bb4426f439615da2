// A window manager beside a test, and how it treats windows. Queries use their own connection, so
// that the program that owns the windows can make them.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

struct _XDisplay;

namespace test {

// Openbox on the test's display, from when the constructor returns.
class WindowManager {
  public:
    WindowManager();
    ~WindowManager();
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

  private:
    std::string folder_;
    pid_t process_ = 0;
};

struct ManagedWindow {
    unsigned long window = 0;
    std::string title;
    bool can_be_closed = false;  // announces WM_DELETE_WINDOW
    bool has_one_size = false;   // its hints allow neither minimising nor resizing
};

struct ScreenPoint {
    int x = 0, y = 0;
};

class ManagedWindows {
  public:
    ManagedWindows();
    ~ManagedWindows();
    ManagedWindows(const ManagedWindows&) = delete;
    ManagedWindows& operator=(const ManagedWindows&) = delete;

    // The windows that the window manager shows, each in a frame.
    std::vector<ManagedWindow> shown() const;
    // The shown window with this title, once it stands still: two calls must find it at the same
    // place.
    std::optional<ManagedWindow> settled(const std::string& title);
    // The buttons at the right end of the window's title bar.
    ScreenPoint close_button(const ManagedWindow& window) const;
    ScreenPoint minimise_button(const ManagedWindow& window) const;
    bool has_keyboard(const ManagedWindow& window) const;
    // Asks the window to close, as a task bar does.
    void ask_to_close(const ManagedWindow& window);
    // Whether the window has been hidden, even for a moment, since watch() was called.
    void watch(const ManagedWindow& window);
    bool was_hidden();

  private:
    _XDisplay* display_;
    std::string last_place_;
};

}  // namespace test
