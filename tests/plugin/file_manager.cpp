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

extern "C" OSStatus LSCopyItemInfoForRef(const FSRef* ref, LSRequestedInfo which,
                                         LSItemInfoRecord* info) {
    if (test::file_manager.item_error != noErr) return test::file_manager.item_error;
    static auto* next =
        reinterpret_cast<decltype(&LSCopyItemInfoForRef)>(dlsym(RTLD_NEXT, "LSCopyItemInfoForRef"));
    const OSStatus status = next(ref, which, info);
    info->flags |= test::file_manager.item_flags;
    return status;
}

extern "C" OSStatus LSCopyDisplayNameForRef(const FSRef* ref, CFStringRef* name) {
    const std::u16string& text = test::file_manager.display_name;
    if (!text.empty()) {
        *name = test::string_of_units(text);
        return noErr;
    }
    static auto* next = reinterpret_cast<decltype(&LSCopyDisplayNameForRef)>(
        dlsym(RTLD_NEXT, "LSCopyDisplayNameForRef"));
    return next(ref, name);
}

extern "C" OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean chains, Boolean* is_folder,
                                                  Boolean* was_alias, unsigned long flags) {
    static auto* next = reinterpret_cast<decltype(&FSResolveAliasFileWithMountFlags)>(
        dlsym(RTLD_NEXT, "FSResolveAliasFileWithMountFlags"));
    const OSErr error = next(ref, chains, is_folder, was_alias, flags);
    if (test::file_manager.is_no_alias) *was_alias = false;
    return error;
}

extern "C" OSStatus UCCompareTextDefault(UCCollateOptions options, const UniChar* left,
                                         UniCharCount left_length, const UniChar* right,
                                         UniCharCount right_length, Boolean* equal, SInt32* order) {
    if (test::file_manager.collation_error != noErr) return test::file_manager.collation_error;
    static auto* next =
        reinterpret_cast<decltype(&UCCompareTextDefault)>(dlsym(RTLD_NEXT, "UCCompareTextDefault"));
    return next(options, left, left_length, right, right_length, equal, order);
}
