// Whether a window of the program is where it believes to be: a window manager takes its time.
#pragma once

#include <AppKit/AppKit.h>

// It is shown, and stands on the screen where its frame says.
bool IsSettled(NSWindow* window);

// What is typed comes to it.
bool HasKeyboard(NSWindow* window);

// Whether a shown window covers a part of another, in the order in which the server has them.
bool StandsOver(NSWindow* window, NSWindow* other);
