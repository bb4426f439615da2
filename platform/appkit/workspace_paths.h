// Paths as the file system has them.
#pragma once

#include <Foundation/Foundation.h>

#include <string>

// The bytes of a path, or of a "file:" URL, whose escapes can name what no string can. Empty for
// nil and for anything else.
std::string path_bytes(NSString* path);
