// delvio menu.
#pragma once

#include "command/command_line.h"

// Returns the exit status.
int RunMenuCommand(MenuRequest request);
