// Delvio's own items above GWorkspace's: the user's folders, undo, and the settings. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>
#include <vector>

// Adds the items for these files; none for no files.
void add_first_items(NSMenu* menu, const std::vector<std::string>& files);
