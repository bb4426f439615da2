// Stands in for the platform's file manager, with answers that no disk gives in a test.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

namespace test {

// Where a field is empty, the platform answers.
struct FileManager {
    OSErr catalog_error = noErr;       // of FSGetCatalogInfo
    OSStatus path_error = noErr;       // of FSRefMakePath
    std::string path;                  // its answer
    UInt32 path_limit = 0;             // the limit in the last call
    OSStatus item_error = noErr;       // of LSCopyItemInfoForRef
    LSItemInfoFlags item_flags = 0;    // in its answer, beside the platform's
    std::u16string display_name;       // the answer of LSCopyDisplayNameForRef
    bool is_no_alias = false;          // FSResolveAliasFileWithMountFlags has not followed an alias
    OSStatus collation_error = noErr;  // of UCCompareTextDefault
};

extern FileManager file_manager;

// A string of these UTF-16 units, also where they are no text.
CFStringRef string_of_units(const std::u16string& units);

}  // namespace test
