// Puts the plug-in into other programs, and takes it out again. Main thread.
#pragma once

#include "command/command_line.h"

// Prints what it did on standard output. Returns the exit status.
int run_install_command(const InstallRequest& request);
