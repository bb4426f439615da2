// The file managers that Delvio can enter. Main thread.
#pragma once

#include <string>
#include <vector>

#include "file_managers/entry_file.h"
#include "file_managers/entry_texts.h"

struct FileManager {
    const char* name;     // as the user names it
    const char* title;    // as it names itself
    const char* program;  // the program that is looked for
    // The files that bring Delvio in; null for GWorkspace, which keeps a list of bundles.
    std::vector<EntryFile> (*files)(const Invocation& invocation);
    const char* hint;   // what `delvio install` says, in English
    const char* place;  // where the entry is, in English
};

const std::vector<FileManager>& file_managers();
// Null for an unknown name.
const FileManager* find_file_manager(const std::string& name);
bool is_found(const FileManager& manager);
