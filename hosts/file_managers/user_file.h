// The user's own files, read and replaced as a whole. Main thread.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

// What a file holds; nothing if there is no file.
using FileText = std::optional<std::string>;

// False when the file cannot be read, or is no file of a sensible size; then *problem says why.
bool read_user_file(const std::string& path, FileText* text, std::string* problem);

// `outdated`: another program has changed the file since it held `before`. When it failed, *problem
// says why. In both cases the file is as that program left it.
enum class Change { done, outdated, failed };

// Replaces the whole file, which holds `before`. A symbolic link to it stays, and so do its owner
// and permissions; the bits of `mode` that let it be executed are added. A new file gets `mode`,
// and the folders that are missing are made.
Change write_user_file(const std::string& path, const FileText& before, const std::string& text,
                       mode_t mode, std::string* problem);

// Removes the file, which holds `before`, and up to `folders` of the folders above it as far as
// they are empty.
Change remove_user_file(const std::string& path, const std::string& before, int folders,
                        std::string* problem);

// How many of the folders above the file are missing.
int count_missing_folders(const std::string& path);
