// What the host's own items do with the files. Main thread.
#pragma once

#include <string>
#include <vector>

// Each acts on absolute paths, and returns an empty string, or in one line why it failed.

// Each file with the user's default program for it. What cannot be opened is told as an
// OpenProblem.
std::string OpenFiles(const std::vector<std::string>& files);
// Shows the files, selected, in the desktop's file manager; where none answers on the session bus,
// opens their folder with the default program.
std::string ShowInFileManager(const std::vector<std::string>& files);
// Puts the paths, one a line, on the clipboard, those with control characters as $'...', where they
// stay until something else is copied.
std::string CopyPaths(const std::vector<std::string>& files);
// Never deletes: what has no trash to go to stays where it is.
std::string MoveToTrash(const std::vector<std::string>& files);

// Waits until requests to start programs by the session bus have left. Sent before the end.
void FlushSessionBus();
