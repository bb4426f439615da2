// Folders, used by descriptor and name, so that no path is too long and no link leads elsewhere.
#pragma once

#include <stdint.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/descriptor.h"

namespace operations {

// How many levels of nested folders are copied: few enough that neither the open files nor the
// stack of a thread run out.
constexpr int deepest_folder = 300;

// Opens the folder; does not follow a link at its name.
Descriptor open_folder_at(int parent, const char* name);

// All names but "." and "..", in the folder's order. False with errno.
bool names_in_folder(int folder, std::vector<std::string>* names);

// Reads the state of the entry with this name; of a link itself and not of its target. False with
// errno.
bool look_at(int folder, const char* name, struct stat* what);

// Whether this error number means that nothing is there. Every other error leaves that open: a disk
// that does not answer may hold the file.
bool means_missing(int error);

// The absolute path of an open folder, without links; empty with errno once it has been removed.
std::string path_of_folder(int folder);

// A number that differs from mount to mount, even for mounts of one disk. 0 with errno.
uint64_t mount_of(int file);

// Renames an entry to a name that must be free, in one step. False with errno: EEXIST when the name
// is taken, EXDEV when it is on another file system.
bool move_free(int from_folder, const std::string& from, int to_folder, const std::string& to);

// Removes the entry, a folder with everything in it, even read-only folders of this user; never
// another mount. Goes on after a failure. False when something is left.
bool remove_tree(int folder, const char* name);

// Makes the folder and its missing parents, private to the user. False with errno.
bool make_folders(const std::string& path);

// For "/a/b/c": "/a/b" and "c".
std::string parent_of(const std::string& path);
std::string name_in_path(const std::string& path);

}  // namespace operations
