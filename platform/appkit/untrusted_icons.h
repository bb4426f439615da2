// Icons that come from files which nobody vouches for. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

// Whether the file comes with the system, so that its pictures can be read at once and in this
// process. Looks only at the name.
bool is_systems_own(const std::string& path);

// Gives the image the picture in `file`: at once if the picture is known already, else when it has
// been decoded elsewhere. Menus that show the image then show the picture. An image without such a
// picture stays as it is. The call reads nothing and waits for nothing.
void show_untrusted_icon(NSImage* image, const std::string& file);

// How many pictures are still to come.
size_t awaited_icons();
