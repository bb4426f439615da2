// What a `.desktop` file says of itself.
#pragma once

#include <string>

namespace files {

struct File;

struct DesktopEntry {
    bool is_application;  // of type Application
    std::string name;     // in the user's language; empty when the file gives none
};

// Reads the plain file. Valid until the next call; the entry read last is kept for the next
// question about the same reference.
const DesktopEntry& desktop_entry(const File& file);

// Whether the plain file at `path` is an entry of type Application.
bool is_application_entry(const std::string& path);

}  // namespace files
