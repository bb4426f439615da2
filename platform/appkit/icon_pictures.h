// The pictures of files' icons: the desktop theme's, the file's own, GNUstep's. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Adds what the file at `path` shows as its icon: at least one picture, but where even GNUstep's
// own are missing. One that nobody vouches for may replace it later. Asks the disk.
void give_pictures(NSImage* image, NSString* path);

// Whether that can happen, by the name alone.
bool may_have_untrusted_picture(NSString* name);
