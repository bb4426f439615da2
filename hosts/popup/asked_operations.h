// The file operations that the plug-in asks this command for. Main thread.
#pragma once

#include "command/command_line.h"

// From now on the command carries out file operations. For a shown menu it shows windows, or asks
// the desktop's file manager if the user has set that; for a pick it asks nobody.
void offer_file_operations(const MenuRequest& request);

// Waits until all operations have ended. Returns the exit status: done, failed, or skipped. Prints
// what was not done on standard error, one line for each file.
int finish_file_operations();
