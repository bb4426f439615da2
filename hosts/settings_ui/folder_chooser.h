// Menus of the settings window: a list of choices, and the folders of the disk. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>
#include <vector>

// Each shows a menu at a point of the screen and returns when it has closed.

// Returns the index of the picked choice, or -1. `current` has a check mark.
int choose_from(const std::vector<std::string>& choices, int current, NSPoint point);
// Returns the path of the picked folder, or an empty string. Submenus lead from the home folder and
// from the root of the disk to all folders that are not hidden.
std::string choose_folder(NSPoint point);
