// What an application bundle says of itself.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace files {

// From the bundle's information list: CFBundleDisplayName, else ApplicationName. Null when it has
// no list or the list has no name. The caller releases it.
CFStringRef copy_bundle_name(const char* path);

// Whether the bundle, or what a link of this path leads to, stands in one of the applications
// folders of GNUstep or runs: only then its own name is shown.
bool is_believed_bundle(const std::string& path);

// The path of its program, symbolic links resolved; empty when it has none.
std::string bundle_program(const char* path);

// The path of the picture that its information list names as its icon, or of one that has the
// bundle's name; empty when there is none. Any file can be named there.
std::string bundle_icon(const char* path);

}  // namespace files
