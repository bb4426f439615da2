#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "platform/carbon/file_questions.h"
#include "support/temp_folder.h"

namespace {

struct Resolved {
    OSErr error;
    bool is_folder, was_alias;
    std::string path;  // the reference's path afterwards
};

Resolved resolve(const std::string& path, bool chains = false) {
    FSRef ref = test::reference(path);
    Boolean is_folder = 9, was_alias = 9;
    const OSErr error = FSResolveAliasFileWithMountFlags(&ref, chains, &is_folder, &was_alias,
                                                         kResolveAliasFileNoUI);
    return {error, is_folder != 0, was_alias != 0, test::path_of(ref)};
}

void expect_target(const Resolved& resolved, const std::string& path, bool is_folder) {
    EXPECT_EQ(resolved.error, noErr);
    EXPECT_TRUE(resolved.was_alias);
    EXPECT_EQ(resolved.is_folder, is_folder);
    EXPECT_EQ(resolved.path, path);
}

}  // namespace

TEST(Aliases, WhatIsNoLinkStaysItself) {
    test::TempFolder folder;
    const std::string file = folder.file("file"), sub = folder.folder("sub");
    const Resolved plain = resolve(file), directory = resolve(sub);
    EXPECT_EQ(plain.error, noErr);
    EXPECT_FALSE(plain.was_alias);
    EXPECT_FALSE(plain.is_folder);
    EXPECT_EQ(plain.path, file);
    EXPECT_FALSE(directory.was_alias);
    EXPECT_TRUE(directory.is_folder);
}

TEST(Aliases, ALinkLeadsToItsTarget) {
    test::TempFolder folder;
    const std::string file = folder.file("file"), sub = folder.folder("sub");
    expect_target(resolve(folder.link("a", file)), file, false);
    expect_target(resolve(folder.link("b", "sub")), sub, true);
    expect_target(resolve(folder.link("c", "sub/")), sub, true);
    expect_target(resolve(folder.link("sub/d", "../file")), file, false);
    expect_target(resolve(folder.link("sub/e", "..")), folder.path(), true);
    expect_target(resolve(folder.link("f", "./sub/./../file")), file, false);
    expect_target(resolve(folder.link("g", "/")), "/", true);
    expect_target(resolve(folder.link("h", ".")), folder.path(), true);
}

TEST(Aliases, OneLinkOfAChainIsFollowedByNameOrAllOfThem) {
    test::TempFolder folder;
    const std::string sub = folder.folder("sub");
    folder.link("last", "sub");
    folder.link("middle", "last");
    const std::string first = folder.link("first", "middle");
    expect_target(resolve(first), folder.path("middle"), true);
    expect_target(resolve(first, true), sub, true);
}

TEST(Aliases, ADanglingLinkIsAnErrorAndTheReferenceStays) {
    test::TempFolder folder;
    folder.link("dangling", "missing");
    for (const char* target :
         {"missing", "dangling", "/no/such/place", "file/below", "missing/.."}) {
        folder.file("file");
        const std::string link = folder.link("link", target);
        for (const bool chains : {false, true}) {
            const Resolved resolved = resolve(link, chains);
            EXPECT_EQ(resolved.error, fnfErr) << target;
            EXPECT_EQ(resolved.path, link);
            EXPECT_FALSE(resolved.is_folder);
        }
        unlink(link.c_str());
    }
}

TEST(Aliases, ALoopIsAnError) {
    test::TempFolder folder;
    const std::string self = folder.link("self", "self");
    folder.link("ping", "pong");
    folder.link("pong", "ping");
    for (const std::string& link : {self, folder.path("ping"), folder.path("pong")}) {
        EXPECT_EQ(resolve(link).error, fnfErr) << link;
        EXPECT_EQ(resolve(link, true).error, fnfErr) << link;
        EXPECT_EQ(resolve(link).path, link);
    }
}

TEST(Aliases, TheTargetsTypeCanBeAskedThroughTheResolvedReference) {
    test::TempFolder folder;
    folder.file("program");
    ASSERT_TRUE(folder.finder_info("program", 0, "APPL")) << test::no_attributes;
    FSRef ref = test::reference(folder.link("link", "program"));
    Boolean is_folder, was_alias;
    ASSERT_EQ(FSResolveAliasFileWithMountFlags(&ref, false, &is_folder, &was_alias, 1), noErr);
    LSItemInfoRecord info;
    ASSERT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator, &info), noErr);
    EXPECT_EQ(info.filetype, OSType{0x4150504C});
    EXPECT_EQ(info.flags, 0u);
}

TEST(Aliases, AVanishedLinkIsNotFound) {
    test::TempFolder folder;
    FSRef ref = test::reference(folder.link("link", folder.file("file")));
    unlink(folder.path("link").c_str());
    Boolean is_folder, was_alias;
    EXPECT_EQ(FSResolveAliasFileWithMountFlags(&ref, false, &is_folder, &was_alias, 1), fnfErr);
    EXPECT_EQ(FSResolveAliasFileWithMountFlags(&ref, false, nullptr, &was_alias, 1), paramErr);
}
