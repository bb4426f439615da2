// What a window's properties say. A window that is gone has none.
#pragma once

#include <X11/Xlib.h>

#include <string>
#include <vector>

namespace test {

std::vector<long> numbers_of(Display* display, Window window, const char* property);
// Of _NET_WM_NAME.
std::string title_of(Display* display, Window window);

}  // namespace test
