// What an application bundle says of itself.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

namespace files {

// From the bundle's information list: CFBundleDisplayName, else ApplicationName. Null when it has
// no list or the list has no name. The caller releases it.
CFStringRef copy_bundle_name(const char* path);

// The path of its program, symbolic links resolved; empty when it has none.
std::string bundle_program(const char* path);

}  // namespace files
