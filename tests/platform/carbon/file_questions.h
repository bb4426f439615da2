// The queries that the File Manager tests make again and again.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

namespace test {

// A reference to `path`, which must exist.
FSRef reference(const std::string& path);

// The path of a reference; empty when it has none.
std::string path_of(const FSRef& ref);

// The Finder information of a file, read again each time. With an `error` other than noErr it stays
// cleared.
FileInfo finder_info(const std::string& path, OSErr* error = nullptr);

// The Launch Services flags of a file, and its type.
LSItemInfoRecord item_info(const std::string& path);

// The display name of a file, as UTF-8; the error's number when there is none.
std::string display_name(const std::string& path);

}  // namespace test
