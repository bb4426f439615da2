// A picture of the contextual menus that are open. Not a Mac interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Writes the open levels as they are shown, side by side on a transparent ground, to a PNG file;
// with `shadow`, each with a soft shadow. NO when no menu is shown or the file cannot be written.
// Call it while the menu tracks, from a timer in NSEventTrackingRunLoopMode.
BOOL write_picture_of_open_menus(NSString* path, BOOL shadow);
