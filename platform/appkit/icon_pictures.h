// The pictures of files' icons: the desktop theme's, the file's own, GNUstep's. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Adds the pictures of the icon of the file at `path`: at least one, unless even GNUstep's own are
// missing. A picture that nobody vouches for may replace them later. Asks the disk.
void give_pictures(NSImage* image, NSString* path);

// The theme's emblems for links, and for links that lead nowhere; nil if it has none.
NSImage* link_emblem();
NSImage* broken_link_emblem();

// Whether such a picture may replace them, judged by the name alone.
bool may_have_untrusted_picture(NSString* name);
