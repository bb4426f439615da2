// The windows of the desktop's applications, as the window manager lists them; without one, the
// top-level windows that are shown. Only the X server is asked, many questions at a time, and a
// window that goes away while it is asked about is left out. Main thread.
#pragma once

#include <stdint.h>
#include <sys/types.h>

#include <string>
#include <vector>

struct DesktopWindow {
    uint32_t window;
    pid_t process;         // 0 when it is not known, or runs on another machine
    std::string instance;  // the two parts of WM_CLASS
    std::string class_name;
    bool is_normal;  // an application's own: no panel, menu, dialog or the like
};

// At most 512. Empty without a display.
std::vector<DesktopWindow> desktop_windows();

// The process whose window is active: the window manager's active window, or without one the
// window with the keyboard. 0 when there is none.
pid_t active_process();
