// What the `.desktop` file of an application says: the one reader of such files, each as a plain
// file of at most 256 KiB. Whom to believe is another question: see desktop_entries.h. Main thread.
#pragma once

#include <string>

namespace files {

struct EntryFile {
    std::string name;          // in the user's language; empty when the file gives none
    std::string plain_name;    // as it is without a language
    std::string icon;          // a name, or an absolute path
    std::string command;       // Exec
    std::string window_class;  // StartupWMClass
    bool is_hidden;            // Hidden: as if the entry had been deleted
    bool is_displayed;         // without NoDisplay
};

// Null for what is no entry of an application. A file that stays as it is, is parsed once for those
// who ask in turn. Valid until the next call.
const EntryFile* read_entry_file(const std::string& path);

}  // namespace files
