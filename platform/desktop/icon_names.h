// Which icon a file has, by its name and what the file system says about it. Only small .desktop
// entries are opened: the desktop's own entries name their icons; a stranger's looks like a text,
// or like a program when it is executable.
#pragma once

#include <string>
#include <vector>

// Names the icon of the file at `path`, or of the target when it is a symbolic link. Files with the
// same icon have the same key. Cheap.
std::string icon_key(const std::string& path);

// The themed names of a key, the best first, or the absolute path of one picture.
std::vector<std::string> icon_names(const std::string& key);
