// Delvio in the menus of the file managers that are installed here. Main thread.
#pragma once

#include <string>
#include <vector>

#include "settings_ui/settings_content.h"

std::vector<ShownManager> shown_managers();
// Whether there is a file manager to put Delvio into, and none has it yet.
bool lacks_managers(const std::vector<ShownManager>& managers);

struct SwitchedManager {
    std::string message;
    bool is_problem = false;
};
// Puts Delvio into the file manager of this title, or takes it out.
SwitchedManager switch_manager(const ShownManager& manager);
