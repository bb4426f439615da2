// The applications that the desktop has installed, as their entries describe them. Main thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

namespace files {

struct InstalledApplication {
    std::string id;            // the entry's name without ".desktop"; folders become prefixes
    std::string path;          // of the entry
    std::string name;          // in the user's language
    std::string plain_name;    // Name without a language
    std::string window_class;  // StartupWMClass
    // The file name of the program that the application runs. Empty for a program that runs many
    // applications, such as a shell: it says nothing about this one.
    std::string program;
    bool is_shown;  // neither NoDisplay nor Hidden
};

// The applications of $XDG_DATA_HOME and $XDG_DATA_DIRS. When several have one id, the first
// counts. They are read again when one of their folders has changed; that takes a stat for each
// folder, at most ten times a second. Valid until the next call.
const std::vector<InstalledApplication>& installed_applications();

// Whether this file is one of the desktop's own entries, under whatever path it was found, or lies
// in the declared applications folder. Only the user and the system fill these folders; a
// stranger's file lies elsewhere.
bool is_installed_entry(const std::string& path, const struct stat& status);

// Whether this path, free of links, is in the declared applications folder or below it.
bool is_in_declared_folder(const std::string& path);

// Notes what the programs that run now belong to: entries, bundles, or the programs themselves.
// Each call replaces what was noted before.
void note_running_applications(const std::vector<std::string>& paths);
bool knows_running_applications();
bool is_running_application(const std::string& path);

// Reads the entry at `path`, in any folder. False when it is no application's.
bool read_application(const std::string& path, InstalledApplication* application);

// Null when there is none.
const InstalledApplication* application_with_id(const std::string& id);

// The file name of the program in an Exec line, as in InstalledApplication.
std::string program_of_command(const char* command);

// Whether a program of this file name is a shell, an interpreter or the like, which tells nothing
// about the application that it runs.
bool runs_many_applications(const std::string& program);

bool same_text(const std::string& one, const std::string& other);  // but for case

}  // namespace files
