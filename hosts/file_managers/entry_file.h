// A file of the user's that brings Delvio into the menus of a file manager. Main thread.
#pragma once

#include <functional>
#include <string>

#include "file_managers/user_file.h"

// What is to become of a file.
struct Edit {
    FileText text;        // what it is to hold; nothing: it is to go
    int folders = 0;      // with a file that is to go: how many folders were made for it
    std::string problem;  // if not empty, the file must stay as it is, and this says why
};

struct EntryFile {
    std::string path;
    mode_t mode = 0644;
    // Puts the entry in; `missing` is the number of folders above the file that are missing.
    std::function<Edit(const FileText& now, int missing)> put_in;
    std::function<Edit(const FileText& now)> take_out;
};

// `other`: an entry for another delvio, or of another version.
enum class EntryState { absent, present, other, refused };

EntryState state_of(const EntryFile& file, std::string* problem);

// Whether something was changed. When it cannot be done, *problem says why, and nothing is changed.
bool put_in(const EntryFile& file, std::string* problem);
bool take_out(const EntryFile& file, std::string* problem);

// The line by which a file is known as Delvio's, with the number of folders that were made for it.
std::string made_by_delvio(int folders);
// The number in that line; less than zero if the text has no such line.
int folders_made_for(const std::string& text);

// A file that is Delvio's as a whole. `text` makes what it holds, with the line in it.
EntryFile whole_file(const std::string& path, mode_t mode,
                     const std::function<std::string(const std::string& line)>& text);
