// Icons of files that file managers do not show: menus that show them all the same dim their rows.
// Main thread.
#pragma once

@class NSImage;

// The image is the caller's own.
void mark_as_hidden(NSImage* icon);
bool is_icon_of_hidden_file(NSImage* icon);
