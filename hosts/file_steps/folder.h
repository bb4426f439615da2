// Folders, by descriptor and name, so that no path is too long and no link leads elsewhere.
#pragma once

#include <stdint.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/descriptor.h"

namespace operations {

// How many folders that stand in one another are copied: so few that neither the open files nor the
// stack of a thread run out.
constexpr int deepest_folder = 300;

// Without following a link at its name.
Descriptor OpenFolder(int parent, const char* name);

// All names but "." and "..", in the folder's order. False with errno.
bool ReadNames(int folder, std::vector<std::string>* names);

// The state of what stands at the name, a link itself and not its target. False with errno.
bool Look(int folder, const char* name, struct stat* what);

// Whether a question that failed so says that nothing is there. Every other error leaves it open:
// a disk that does not answer may hold what was asked for.
bool IsMissing(int error);

// The absolute path of an open folder, no link in it; empty with errno once it has been removed.
std::string PathOf(int folder);

// What tells mounts apart, also several of one disk. 0 with errno.
uint64_t MountOf(int file);

// Renames what stands at one name to another that must be free, in one step. False with errno:
// EEXIST when it is not free, EXDEV when it is on another file system.
bool MoveFree(int from_folder, const std::string& from, int to_folder, const std::string& to);

// Removes whatever stands at the name, folders with all that is in them, also read-only ones of
// our own; never what is mounted there. Goes on after a failure. False when something is left.
bool RemoveTree(int folder, const char* name);

// Makes the folder and those above it, private to the user. False with errno.
bool MakeFolders(const std::string& path);

// "/a/b/c" is "/a/b" and "c".
std::string ParentOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace operations
