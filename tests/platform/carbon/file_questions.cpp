#include "platform/carbon/file_questions.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

namespace test {

static const UInt8* bytes(const std::string& text) {
    return reinterpret_cast<const UInt8*>(text.c_str());
}

FSRef reference(const std::string& path) {
    FSRef ref = {};
    EXPECT_EQ(FSPathMakeRef(bytes(path), &ref, nullptr), noErr) << path;
    return ref;
}

std::string path_of(const FSRef& ref) {
    char path[PATH_MAX] = "";
    if (FSRefMakePath(&ref, reinterpret_cast<UInt8*>(path), sizeof path) != noErr) return "";
    return path;
}

FileInfo finder_info(const std::string& path, OSErr* error) {
    const FSRef ref = reference(path);
    FSCatalogInfo info = {};
    const OSErr result =
        FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr);
    if (error)
        *error = result;
    else
        EXPECT_EQ(result, noErr) << path;
    FileInfo finder;
    memcpy(&finder, info.finderInfo, sizeof finder);
    return finder;
}

LSItemInfoRecord item_info(const std::string& path) {
    const FSRef ref = reference(path);
    LSItemInfoRecord info = {};
    EXPECT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator | kLSRequestAllFlags, &info), noErr)
        << path;
    return info;
}

std::string display_name(const std::string& path) {
    const FSRef ref = reference(path);
    CFStringRef name = nullptr;
    const OSStatus error = LSCopyDisplayNameForRef(&ref, &name);
    if (error != noErr) return std::to_string(error);
    std::string text(static_cast<size_t>(CFStringGetLength(name)) * 3 + 1, '\0');
    EXPECT_TRUE(CFStringGetCString(name, text.data(), static_cast<CFIndex>(text.size()),
                                   kCFStringEncodingUTF8));
    CFRelease(name);
    text.resize(text.find('\0'));
    return text;
}

}  // namespace test
