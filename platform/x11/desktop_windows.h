// The windows of the desktop's applications, as the window manager lists them; without a window
// manager, the top-level windows that are shown. Only the X server is asked, many questions at a
// time, and a window that goes away while it is asked about is left out. Main thread.
#pragma once

#include <stdint.h>
#include <sys/types.h>

#include <string>
#include <vector>

struct DesktopWindow {
    uint32_t window;
    pid_t process;         // by the rules in window_process.h
    std::string instance;  // the two parts of WM_CLASS
    std::string class_name;
    bool is_normal;  // an application's window: no panel, menu, dialog or the like
};

// At most 512. Empty without a display.
std::vector<DesktopWindow> desktop_windows();
