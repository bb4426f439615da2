// The file operations that the plug-in asks the command for. Main thread.
#pragma once

#include "command/command_line.h"

// From now on file operations are carried out: for a shown menu with windows, by the desktop's file
// manager if the user has set so; for a pick without asking anybody.
void OfferFileOperations(const MenuRequest& request);

// A signal that the command catches ends an alert and a file operation, too.
void EndAlert();

// Waits until all have ended. The exit status: done, failed, or skipped. What was not done is told
// on standard error, a line each.
int FinishFileOperations();
