// What an application bundle says about itself.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace files {

// The name in the bundle's information list: CFBundleDisplayName, else ApplicationName. Null when
// the bundle has no list or the list has no name. The caller releases it.
CFStringRef copy_bundle_name(const char* path);

// Whether the bundle's own name is shown: the bundle, or the target when `path` is a link, stands
// in one of GNUstep's applications folders or is running.
bool is_believed_bundle(const std::string& path);

// The path of the bundle's program, symbolic links resolved; empty when it has none.
std::string bundle_program(const char* path);

// The path of the picture that the bundle's information list names as its icon, or of one that has
// the bundle's name; empty when there is none. A list can name any file.
std::string bundle_icon(const char* path);

}  // namespace files
