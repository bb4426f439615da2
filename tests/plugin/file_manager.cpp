#include "plugin/file_manager.h"

#include <dlfcn.h>
#include <string.h>

test::FileManager test::file_manager;

extern "C" OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                                  HFSUniStr255* name, FSSpec* spec, FSRef* parent) {
    if (test::file_manager.catalog_error != noErr) return test::file_manager.catalog_error;
    static auto* next =
        reinterpret_cast<decltype(&FSGetCatalogInfo)>(dlsym(RTLD_NEXT, "FSGetCatalogInfo"));
    return next(ref, which, info, name, spec, parent);
}

extern "C" OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size) {
    test::FileManager& answers = test::file_manager;
    answers.path_limit = size;
    if (answers.path_error != noErr) return answers.path_error;
    if (!answers.path.empty()) {
        strncpy(reinterpret_cast<char*>(path), answers.path.c_str(), size);
        return noErr;
    }
    static auto* next =
        reinterpret_cast<decltype(&FSRefMakePath)>(dlsym(RTLD_NEXT, "FSRefMakePath"));
    return next(ref, path, size);
}
