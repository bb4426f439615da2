// Whether a window of the program is where the program thinks it is: a window manager takes its
// time.
#pragma once

#include <AppKit/AppKit.h>

// The window is shown, and its place on the screen matches its frame.
bool is_settled(NSWindow* window);

// The window gets what is typed.
bool keyboard_is_in(NSWindow* window);

// Whether a shown window covers a part of another, in the server's order of windows.
bool stands_over(NSWindow* window, NSWindow* other);
