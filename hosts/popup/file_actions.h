// The actions of the host's own items on the files. Main thread.
#pragma once

#include <string>
#include <vector>

// Each action takes absolute paths, and returns an empty string, or one line that says why it
// failed.

// Opens each file with the user's default program for it. Reports a file that cannot be opened as
// an OpenProblem.
std::string open_files(const std::vector<std::string>& files);
// Shows the files, selected, in the desktop's file manager. If none answers on the session bus,
// opens the files' folder with the default program.
std::string show_in_file_manager(const std::vector<std::string>& files);
// Puts the paths on the clipboard, one per line; a path with control characters is written as
// $'...'. They stay there until something else is copied.
std::string copy_paths(const std::vector<std::string>& files);
// Never deletes: a file that has no trash to go to stays where it is.
std::string move_to_trash(const std::vector<std::string>& files);

// Waits until requests to start programs by the session bus have been sent. Called before the
// command exits.
void flush_bus();
