// The questions that the File Manager tests ask again and again.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

namespace test {

// A reference to `path`, which must exist.
FSRef reference(const std::string& path);

// The path of a reference; empty when it has none.
std::string path_of(const FSRef& ref);

// The Finder information of a file, asked anew. An `error` other than noErr leaves it cleared.
FileInfo finder_info(const std::string& path, OSErr* error = nullptr);

// The Launch Services flags of a file, and its type.
LSItemInfoRecord item_info(const std::string& path);

// The name to show for a file, as UTF-8; the error's number when there is none.
std::string display_name(const std::string& path);

}  // namespace test
