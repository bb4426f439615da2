// delvio menu.
#pragma once

#include "popup/command_line.h"

// Returns the exit status.
int RunMenuCommand(MenuRequest request);
