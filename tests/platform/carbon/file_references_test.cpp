#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <string>
#include <vector>

#include "platform/carbon/file_questions.h"
#include "support/heap.h"
#include "support/temp_folder.h"

namespace {

using test::memory_in_use;
using test::path_of;
using test::reference;

OSStatus make(const std::string& path, FSRef* ref, Boolean* is_directory = nullptr) {
    return FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), ref, is_directory);
}

OSErr catalog_error(const FSRef& ref) {
    FSCatalogInfo info;
    return FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr);
}

OSStatus item_error(const FSRef& ref) {
    LSItemInfoRecord info;
    return LSCopyItemInfoForRef(&ref, kLSRequestAllFlags, &info);
}

OSStatus name_error(const FSRef& ref) {
    CFStringRef name = nullptr;
    const OSStatus error = LSCopyDisplayNameForRef(&ref, &name);
    CFRelease(name);
    return error;
}

OSErr resolve_error(FSRef ref) {
    Boolean folder, alias;
    return FSResolveAliasFileWithMountFlags(&ref, false, &folder, &alias, kResolveAliasFileNoUI);
}

void expect_every_call_to_find_nothing(const FSRef& ref) {
    UInt8 path[PATH_MAX];
    EXPECT_EQ(FSRefMakePath(&ref, path, sizeof path), fnfErr);
    EXPECT_EQ(catalog_error(ref), fnfErr);
    EXPECT_EQ(item_error(ref), fnfErr);
    EXPECT_EQ(name_error(ref), fnfErr);
    EXPECT_EQ(resolve_error(ref), fnfErr);
}

}  // namespace

TEST(FileReferences, AReferenceNamesItsPath) {
    test::TempFolder folder;
    const std::string file = folder.file("plain.txt");
    EXPECT_EQ(path_of(reference(file)), file);
    EXPECT_EQ(path_of(reference("/")), "/");
}

TEST(FileReferences, IsDirectoryTellsFoldersFromTheRest) {
    test::TempFolder folder;
    folder.link("link", folder.folder("folder"));
    FSRef ref;
    Boolean is_directory = 9;
    EXPECT_EQ(make(folder.path("folder"), &ref, &is_directory), noErr);
    EXPECT_TRUE(is_directory);
    EXPECT_EQ(make(folder.path("link"), &ref, &is_directory), noErr);
    EXPECT_FALSE(is_directory);
    EXPECT_EQ(make(folder.file("file"), &ref, &is_directory), noErr);
    EXPECT_FALSE(is_directory);
}

TEST(FileReferences, SlashesAtTheEndAreDroppedAndALinkIsStillNotFollowed) {
    test::TempFolder folder;
    folder.link("link", folder.folder("folder"));
    EXPECT_EQ(path_of(reference(folder.path("folder") + "//")), folder.path("folder"));
    EXPECT_EQ(path_of(reference(folder.path("link") + "/")), folder.path("link"));
    EXPECT_TRUE(test::finder_info(folder.path("link") + "/").finderFlags & kIsAlias);
    EXPECT_EQ(path_of(reference("//")), "/");
}

TEST(FileReferences, ASlashAtTheEndAsksForAFolder) {
    test::TempFolder folder;
    folder.file("file");
    folder.link("link", "file");
    folder.link("dangling", "nowhere");
    FSRef ref;
    EXPECT_EQ(make(folder.path("file") + "/", &ref), dirNFErr);
    EXPECT_EQ(make(folder.path("link") + "//", &ref), dirNFErr);
    EXPECT_EQ(make(folder.path("dangling") + "/", &ref), fnfErr);
    EXPECT_EQ(make(folder.path("link"), &ref), noErr);
}

TEST(FileReferences, ARelativePathBeginsAtTheCurrentFolder) {
    test::TempFolder folder;
    folder.file("here");
    char before[PATH_MAX];
    ASSERT_NE(getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(chdir(folder.path().c_str()), 0);
    EXPECT_EQ(path_of(reference("here")), folder.path("here"));
    ASSERT_EQ(chdir(before), 0);
}

TEST(FileReferences, WhatDoesNotExistHasNoReference) {
    test::TempFolder folder;
    FSRef ref = {}, untouched = {};
    EXPECT_EQ(make(folder.path("missing"), &ref), fnfErr);
    EXPECT_EQ(make(folder.file("file") + "/below", &ref), fnfErr);
    EXPECT_EQ(make("", &ref), fnfErr);
    EXPECT_EQ(FSPathMakeRef(nullptr, &ref, nullptr), paramErr);
    EXPECT_EQ(make("/", nullptr), paramErr);
    EXPECT_EQ(memcmp(&ref, &untouched, sizeof ref), 0);
}

TEST(FileReferences, BytesThatNoCallMadeAreNotAReference) {
    FSRef ref;
    for (const int byte : {0, 1, 0x55, 0xFF}) {
        memset(&ref, byte, sizeof ref);
        expect_every_call_to_find_nothing(ref);
    }
}

TEST(FileReferences, AnOldReferenceIsStaleAndNeverAnotherFile) {
    test::TempFolder folder;
    const std::string first = folder.file("first"), other = folder.file("other");
    const FSRef old = reference(first);
    bool stale = false;
    for (int i = 0; i < 10000; i++) {
        reference(other);
        const std::string path = path_of(old);
        EXPECT_TRUE(path == first || path.empty());
        stale = path.empty();
    }
    EXPECT_TRUE(stale);
    expect_every_call_to_find_nothing(old);
}

TEST(FileReferences, AtLeastAThousandReferencesLiveAtOnce) {
    test::TempFolder folder;
    std::vector<FSRef> refs;
    for (int i = 0; i < 1000; i++) refs.push_back(reference(folder.file(std::to_string(i))));
    for (int i = 0; i < 1000; i++) {
        EXPECT_EQ(path_of(refs[static_cast<size_t>(i)]), folder.path(std::to_string(i)));
    }
}

TEST(FileReferences, MemoryDoesNotGrowWithUse) {
    test::TempFolder folder;
    std::string deep = folder.path();
    for (int i = 0; i < 10; i++) deep += "/" + std::string(250, static_cast<char>('a' + i));
    deep = folder.folder(deep.substr(folder.path().size() + 1));
    const std::string shallow = folder.file("file");

    const auto round = [&](const std::string& path, int count) {
        for (int i = 0; i < count; i++) {
            const FSRef ref = reference(path);
            catalog_error(ref);
            name_error(ref);
        }
    };
    // Uses every entry of the table once; the extra memory for long paths is given back.
    round(shallow, 10000);
    const size_t before = memory_in_use();
    round(shallow, 100000);
    round(deep, 10000);
    round(shallow, 10000);
    EXPECT_LT(memory_in_use(), before + 100000);
}

TEST(FileReferences, AVanishedFileIsNotFound) {
    test::TempFolder folder;
    const std::string file = folder.file("file");
    const FSRef ref = reference(file);
    EXPECT_EQ(catalog_error(ref), noErr);
    EXPECT_EQ(item_error(ref), noErr);
    EXPECT_EQ(name_error(ref), noErr);
    unlink(file.c_str());
    expect_every_call_to_find_nothing(ref);
}

TEST(FileReferences, TheSecondQuestionOfAKindLooksAgain) {
    test::TempFolder folder;
    const std::string path = folder.file("changing");
    const FSRef ref = reference(path);
    LSItemInfoRecord info;
    ASSERT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestAllFlags, &info), noErr);
    EXPECT_EQ(info.flags, LSItemInfoFlags{kLSItemInfoIsPlainFile});
    unlink(path.c_str());
    folder.folder("changing");
    ASSERT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestAllFlags, &info), noErr);
    EXPECT_EQ(info.flags, LSItemInfoFlags{kLSItemInfoIsContainer});
}

TEST(FileReferences, APathThatDoesNotFitIsRefusedAndNothingWritten) {
    test::TempFolder folder;
    const std::string file = folder.file("name");
    const FSRef ref = reference(file);
    std::string buffer(file.size() + 1, '#');
    auto* bytes = reinterpret_cast<UInt8*>(buffer.data());
    EXPECT_EQ(FSRefMakePath(&ref, bytes, static_cast<UInt32>(file.size())), pathTooLongErr);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(FSRefMakePath(&ref, bytes, static_cast<UInt32>(file.size() + 1)), noErr);
    EXPECT_EQ(buffer.c_str(), file);
    EXPECT_EQ(FSRefMakePath(&ref, nullptr, 100), paramErr);
}

TEST(FileReferences, PathsBeyondTheSystemsLimitAreTooLong) {
    std::string path;
    while (path.size() < 10000) path += "/" + std::string(99, 'd');
    FSRef ref;
    EXPECT_EQ(make(path, &ref), pathTooLongErr);
    EXPECT_EQ(make("/" + std::string(300, 'n'), &ref), bdNamErr);
}

TEST(FileReferences, NamesMayHoldAnyBytes) {
    test::TempFolder folder;
    const std::string names[] = {"new\nline", "\xFF\xFE invalid",    "\x01\x1B[31m",     " ",
                                 "'\"\\",     std::string(255, 'x'), "\xC3\xA9t\xC3\xA9"};
    for (const std::string& name : names) {
        const std::string path = folder.file(name);
        EXPECT_EQ(path_of(reference(path)), path);
    }
}

TEST(FileReferences, AFolderThatMayNotBeSearchedIsNoAccess) {
    test::TempFolder folder;
    const std::string path = folder.file("closed/file");
    chmod(folder.path("closed").c_str(), 0);
    // The superuser may search every folder, so root becomes nobody for this query.
    const bool superuser = geteuid() == 0;
    if (superuser) ASSERT_EQ(seteuid(65534), 0);
    FSRef ref;
    const OSStatus error = make(path, &ref);
    if (superuser) ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(error, afpAccessDenied);
}
