// A window that there is once for each user of a display, and that this user's other programs find
// by its name: letters only. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

// Gives the window the name, which it has until it is destroyed or the program ends. False when
// another window has it.
bool take_window_name(NSWindow* window, const std::string& name);
// Brings the window of this name to the front and gives it the keyboard. False when there is none.
// Needs no toolkit.
bool bring_named_window_forward(const std::string& name);
