// Icons of files that file managers do not show: menus that show them all the same dim their rows.
// Main thread.
#pragma once

#include <string>

@class NSImage;

// The icon, which is the caller's own, marked if the file at an absolute path is hidden.
NSImage* marked_if_hidden(NSImage* icon, const std::string& path);
bool is_icon_of_hidden_file(NSImage* icon);
