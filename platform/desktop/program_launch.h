// Starting the user's programs. Nothing is waited for: they run on their own, in a session of their
// own, from the user's home folder, with none of our descriptors, and leave no child of ours
// behind. *reason says why one did not start. Paths are bytes as the file system has them. Main
// thread.
#pragma once

#include <string>
#include <vector>

typedef struct _GDesktopAppInfo GDesktopAppInfo;

enum class Start { done, not_installed, no_program, not_permitted, failed };

// Starts the program of a desktop entry with these documents: all in one start where the entry
// takes several (%F, %U), else one start each. An entry that the session bus starts is asked
// over the bus.
Start start_entry(GDesktopAppInfo* entry, const std::vector<std::string>& documents,
                  std::string* reason);

// The same for the `.desktop` file at this path. It is not asked whether the file is believed:
// desktop_entries.h tells that. Not installed: the program that it names is not there.
Start start_entry_file(const std::string& path, const std::vector<std::string>& documents,
                       std::string* reason);

// Starts a program, an absolute path, with these arguments.
Start start_program(const std::string& program, const std::vector<std::string>& arguments,
                    std::string* reason);
