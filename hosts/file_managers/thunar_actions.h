// Thunar's file of custom actions. Delvio's action is told by its identifier, which Thunar keeps
// when it writes the file again.
#pragma once

#include "file_managers/entry_file.h"

// `command` is the shell command that Thunar is to run, with Thunar's codes. `standard` is the
// system's file of actions, which the user's file hides, so a new file begins with its actions.
EntryFile thunar_actions(const std::string& path, const std::string& command,
                         const std::string& icon, const FileText& standard);
