// Starting the user's programs. Nothing is waited for. A program runs on its own: in its own
// session, from the user's home folder, with none of our descriptors, and without leaving a child
// of ours behind. *reason says why a program did not start. Paths are bytes as the file system has
// them. Main thread.
#pragma once

#include <string>
#include <vector>

typedef struct _GDesktopAppInfo GDesktopAppInfo;

enum class Start { done, not_installed, no_program, not_permitted, failed };

// Starts the program of a desktop entry with these documents: one start for all documents when the
// entry takes several (%F, %U), else one start for each. An entry that the session bus starts is
// asked over the bus.
Start start_entry(GDesktopAppInfo* entry, const std::vector<std::string>& documents,
                  std::string* reason);

// The same for the `.desktop` file at this path. The caller decides whether to believe the file:
// see desktop_entries.h. "Not installed" means that the program that the file names is missing.
Start start_entry_file(const std::string& path, const std::vector<std::string>& documents,
                       std::string* reason);

// Starts a program, given by its absolute path, with these arguments.
Start start_program(const std::string& program, const std::vector<std::string>& arguments,
                    std::string* reason);
