// Icons that come from files which nobody vouches for. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

// Whether the system brings this file along, so that its pictures can be read here and at once.
// Only looks at the name.
bool is_systems_own(const std::string& path);

// Gives the image the picture that is in `file`, at once if it is known by now, else when it has
// been decoded elsewhere; menus that show the image show that. Keeps the image as it is where there
// is no such picture. Reads nothing and waits for nothing.
void show_untrusted_icon(NSImage* image, const std::string& file);

// How many pictures are still to come.
size_t awaited_icons();
