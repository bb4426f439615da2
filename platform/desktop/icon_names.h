// Which icon a file has, by its name and what the file system says of it. Files are not opened, but
// for small .desktop entries: the desktop's own name their icons themselves, a stranger's looks
// like a text, or like a program where it is executable.
#pragma once

#include <string>
#include <vector>

// Names the icon of what is at `path`, the target if it is a symbolic link: equal for files of
// equal icons, and quickly told.
std::string icon_key(const std::string& path);

// The themed names of a key, the best first, or one absolute path of a picture.
std::vector<std::string> icon_names(const std::string& key);
