// What the `.desktop` file of an application says. This is the only reader of such files; it reads
// plain files of at most 256 KiB. desktop_entries.h decides whether to believe a file. Main thread.
#pragma once

#include <string>

namespace files {

struct EntryFile {
    std::string name;          // in the user's language; empty when the file gives none
    std::string plain_name;    // Name without a language
    std::string icon;          // a name, or an absolute path
    std::string command;       // Exec
    std::string window_class;  // StartupWMClass
    bool is_hidden;            // Hidden: as if the entry had been deleted
    bool is_displayed;         // without NoDisplay
};

// Null when the file is no entry of an application. A file that has not changed is parsed only once
// for callers that ask in turn. Valid until the next call.
const EntryFile* read_entry_file(const std::string& path);

}  // namespace files
