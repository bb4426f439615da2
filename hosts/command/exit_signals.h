// What happens when the command is told to end, and what must be undone at its end.
#pragma once

#include <sys/types.h>

#include <string>

// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE undo what is registered below and end the process
// with status 128 plus the signal's number, and nobody's call of signal() changes that. The X
// server lets go of grabs by itself then.
void CatchExitSignals();

// A child to end, and a file and then its folder to remove, when the process ends: by a signal, or
// by EndChildAndRemoveFile(). A process of 0 and empty paths take the registration back.
void SetChildToEnd(pid_t child);
void SetFileToRemove(const std::string& file, const std::string& folder);
void EndChildAndRemoveFile();

// While set, the first signal only writes a byte to this descriptor, so that an open menu can close
// in its own way; two seconds later, or at the next signal, the process ends all the same. -1 ends
// it.
void SetSignalDescriptor(int descriptor);
// The signal that was caught so, or 0.
int CaughtSignal();
