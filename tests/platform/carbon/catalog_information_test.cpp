#include <Carbon/Carbon.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <string>

#include "platform/carbon/file_questions.h"
#include "support/moment.h"
#include "support/temp_folder.h"

namespace {

using test::finder_info;

using test::let_a_moment_pass;

bool is_invisible(const std::string& path) {
    return (finder_info(path).finderFlags & kIsInvisible) != 0;
}

class CatalogInformation : public testing::Test {
  protected:
    void SetUp() override {
        folder.file("probe");
        ASSERT_TRUE(folder.finder_info("probe", 0)) << test::no_attributes;
    }

    test::TempFolder folder;
};

}  // namespace

TEST_F(CatalogInformation, AFileWithoutFinderInformationHasNone) {
    const FileInfo info = finder_info(folder.file("plain"));
    EXPECT_EQ(info.finderFlags, 0);
    EXPECT_EQ(info.fileType, 0u);
    EXPECT_EQ(info.fileCreator, 0u);
}

TEST_F(CatalogInformation, FlagsAndTypeComeFromTheAttributeInNativeOrder) {
    const std::string file = folder.file("labelled");
    ASSERT_TRUE(folder.finder_info("labelled", 0x000C, "APPL"));
    const FileInfo info = finder_info(file);
    EXPECT_EQ(info.finderFlags, 0x000C);
    EXPECT_EQ(info.fileType, OSType{0x4150504C});
    EXPECT_EQ((info.finderFlags & kColor) >> 1, 6);
}

TEST_F(CatalogInformation, AFolderHasAttributesToo) {
    folder.folder("sub");
    ASSERT_TRUE(folder.finder_info("sub", kIsInvisible | 0x0004));
    EXPECT_EQ(finder_info(folder.path("sub")).finderFlags, kIsInvisible | 0x0004);
}

TEST_F(CatalogInformation, AnAttributeOfAnotherSizeIsIgnored) {
    const std::string file = folder.file("odd");
    const std::string bytes(64, '\xFF');
    for (const size_t size : {1u, 31u, 33u, 64u}) {
        ASSERT_EQ(lsetxattr(file.c_str(), "user.com.apple.FinderInfo", bytes.data(), size, 0), 0);
        EXPECT_EQ(finder_info(file).finderFlags, 0) << size;
    }
}

TEST_F(CatalogInformation, AChangedAttributeIsSeenByTheNextReference) {
    const std::string file = folder.file("changing");
    EXPECT_FALSE(is_invisible(file));
    ASSERT_TRUE(folder.finder_info("changing", kIsInvisible));
    EXPECT_TRUE(is_invisible(file));
}

TEST(HiddenLists, AListedNameIsInvisible) {
    test::TempFolder folder;
    folder.file(".hidden", "secret\nalso secret\nlast");
    folder.folder("secret");
    EXPECT_TRUE(is_invisible(folder.path("secret")));
    EXPECT_TRUE(is_invisible(folder.file("also secret")));
    EXPECT_TRUE(is_invisible(folder.file("last")));
    EXPECT_FALSE(is_invisible(folder.file("secret2")));
    EXPECT_FALSE(is_invisible(folder.file("also")));
}

TEST(HiddenLists, EachFolderHasItsOwnList) {
    test::TempFolder folder;
    folder.file("one/.hidden", "name\n");
    folder.file("one/name");
    folder.file("two/name");
    for (int i = 0; i < 3; i++) {
        EXPECT_TRUE(is_invisible(folder.path("one/name")));
        EXPECT_FALSE(is_invisible(folder.path("two/name")));
    }
}

TEST(HiddenLists, AChangedListIsSeenAMomentLaterOrAfterAnotherFolder) {
    test::TempFolder folder;
    const std::string file = folder.file("sub/file");
    EXPECT_FALSE(is_invisible(file));
    folder.file("sub/.hidden", "file\n");
    EXPECT_FALSE(is_invisible(folder.path("sub")));
    EXPECT_TRUE(is_invisible(file));
    unlink(folder.path("sub/.hidden").c_str());
    let_a_moment_pass();
    EXPECT_FALSE(is_invisible(file));
}

TEST(HiddenLists, OnlyAPlainFileIsRead) {
    test::TempFolder folder;
    folder.folder("pipe");
    ASSERT_EQ(mkfifo(folder.path("pipe/.hidden").c_str(), 0644), 0);
    EXPECT_FALSE(is_invisible(folder.file("pipe/file")));  // would wait for ever
    folder.folder("folder/.hidden");
    EXPECT_FALSE(is_invisible(folder.file("folder/file")));
    folder.link("device/.hidden", "/dev/zero");
    EXPECT_FALSE(is_invisible(folder.file("device/file")));
}

TEST(HiddenLists, AnyBytesMayStandInAList) {
    test::TempFolder folder;
    folder.file(".hidden", std::string("\n\n\xFF\xFE\nzero\0byte\ngood\n", 20));
    EXPECT_TRUE(is_invisible(folder.file("\xFF\xFE")));
    EXPECT_TRUE(is_invisible(folder.file("good")));
    EXPECT_FALSE(is_invisible(folder.file("zero")));
}

TEST(CatalogInfo, ASymbolicLinkIsAnAlias) {
    test::TempFolder folder;
    folder.folder("target");
    for (const char* target : {"target", "missing", "link"}) {
        const std::string link = folder.link("link", target);
        EXPECT_TRUE(finder_info(link).finderFlags & kIsAlias) << target;
        unlink(link.c_str());
    }
    EXPECT_FALSE(finder_info(folder.path("target")).finderFlags & kIsAlias);
}

TEST(CatalogInfo, SpecialFilesAreNotOpened) {
    test::TempFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0644), 0);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, folder.path("socket").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    for (const std::string& path : {folder.path("pipe"), folder.path("socket"),
                                    std::string("/dev/null"), std::string("/dev/tty")}) {
        EXPECT_EQ(finder_info(path).finderFlags, 0) << path;
    }
    close(listener);
}

TEST(CatalogInfo, NodeFlagsNameAndParentAreGivenWhenAsked) {
    test::TempFolder folder;
    const std::string path = folder.folder("caf\xC3\xA9");
    const FSRef ref = test::reference(path);
    FSCatalogInfo info = {};
    HFSUniStr255 name = {};
    FSSpec spec;
    memset(&spec, 0xFF, sizeof spec);
    FSRef parent;
    ASSERT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &info, &name, &spec, &parent), noErr);
    EXPECT_EQ(info.nodeFlags, kFSNodeIsDirectoryMask);
    EXPECT_EQ(name.length, 4);
    EXPECT_EQ(name.unicode[3], 0xE9);
    EXPECT_EQ(spec.parID, 0);
    EXPECT_EQ(spec.vRefNum, 0);
    EXPECT_EQ(test::path_of(parent), folder.path());
}

TEST(CatalogInfo, TheRootFolderIsItsOwnParent) {
    const FSRef root = test::reference("/");
    FSRef parent;
    ASSERT_EQ(FSGetCatalogInfo(&root, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent), noErr);
    EXPECT_EQ(test::path_of(parent), "/");
}

TEST(CatalogInfo, ANameThatIsNotUtf8CannotBeGiven) {
    test::TempFolder folder;
    const FSRef ref = test::reference(folder.file("\xFF"));
    HFSUniStr255 name;
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr), bdNamErr);
}
