// What a `.desktop` file says about itself, and how far it is believed. Main thread.
#pragma once

#include <string>

namespace files {

// Anybody can send the user a file that says which program it starts, under which name and icon.
// Only the desktop's own entries are believed.
enum class Standing {
    document,     // a text: shown by its file name, opened like other texts
    program,      // the user has made it executable: shown by its file name, and it can be started
    application,  // one of the desktop's own: shown by its name and icon, and it can be started
};

struct DesktopEntry {
    Standing standing;
    bool may_start;    // installed or executable, and not hidden; one that is not shown, too
    std::string name;  // in the user's language; empty when the file gives none
    std::string icon;  // a name, or an absolute path; empty when the file gives none
};

// Reads the plain file, or the one that a symbolic link leads to.
DesktopEntry desktop_entry_at(const std::string& path);

}  // namespace files
