// Handles the signals that end the command, and cleans up when it ends.
#pragma once

#include <sys/types.h>

#include <string>

// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE undo what is registered below and end the process
// with status 128 plus the signal's number. A later call of signal() does not change that. Grabs
// need no undoing: the X server releases them when the process ends.
void CatchExitSignals();

// Register a child to end, and a file and then its folder to remove, at a signal that ends the
// process or at EndChildAndRemoveFile(). A process of 0 or empty paths remove the registration.
void SetChildToEnd(pid_t child);
void SetFileToRemove(const std::string& file, const std::string& folder);
void EndChildAndRemoveFile();

// While a descriptor is set, the first signal only writes a byte to it, so that an open menu can
// close normally. Two seconds later, or at the next signal, the process ends anyway. -1 removes the
// descriptor.
void SetSignalDescriptor(int descriptor);
// The signal that was caught while a descriptor was set, or 0.
int CaughtSignal();
