// Stands in for the platform's file manager, with answers that no disk gives in a test.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

namespace test {

// Where a field is empty, the platform answers.
struct FileManager {
    OSErr catalog_error = noErr;  // of FSGetCatalogInfo
    OSStatus path_error = noErr;  // of FSRefMakePath
    std::string path;             // its answer
    UInt32 path_limit = 0;        // the limit in the last call
};

extern FileManager file_manager;

}  // namespace test
