// delvio menu.
#pragma once

#include "command/command_line.h"

// Returns the exit status.
int run_menu_command(MenuRequest request);
