// What the files hold that bring Delvio into file managers. `line` is the line of made_by_delvio().
#pragma once

#include <string>

struct Invocation {
    std::string command;  // the path of the `delvio` command
    std::string icon;     // the name of an icon of the theme
};

// The command as a word of a shell.
std::string shell_word(const std::string& text);

// A script that gets the names of the selected files, and has the folder as its current folder.
std::string script_text(const Invocation& invocation, const std::string& line);
// An action of Nemo, for selected files or for the folder's background.
std::string nemo_files_text(const Invocation& invocation, const std::string& line);
std::string nemo_folder_text(const Invocation& invocation, const std::string& line);
// An action as PCManFM and PCManFM-Qt read it.
std::string action_entry_text(const Invocation& invocation, const std::string& line);
// A service menu of Dolphin.
std::string service_menu_text(const Invocation& invocation, const std::string& line);
