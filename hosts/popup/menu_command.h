// delvio menu. Main thread.
#pragma once

#include <string>

#include "command/command_line.h"

// Does once what every menu on the screen needs: connects to the display and loads the plug-in.
// False when that failed; then *problem says why, in one line.
bool prepare_menus(std::string* problem);

// Returns the exit status. May be called again; nothing of one call counts for the next.
int run_menu_command(MenuRequest request);
