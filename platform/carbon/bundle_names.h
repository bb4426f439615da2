// The name that a bundle gives itself.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace files {

// From the bundle's information list: CFBundleDisplayName, else ApplicationName. Null when it has
// no list or the list has no name. The caller releases it.
CFStringRef copy_bundle_name(const char* path);

}  // namespace files
