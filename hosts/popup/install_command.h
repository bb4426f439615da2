// Puts Delvio into the menus of file managers, and takes it out again. Main thread.
#pragma once

#include "command/command_line.h"

// Prints what it did on standard output. Returns the exit status.
int run_install_command(const InstallRequest& request);
