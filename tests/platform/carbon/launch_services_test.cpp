#include <Carbon/Carbon.h>
#include <host/process.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/carbon/file_questions.h"
#include "support/temp_folder.h"

namespace {

using test::display_name;
using test::item_info;

const LSItemInfoFlags plain = kLSItemInfoIsPlainFile;
const LSItemInfoFlags container = kLSItemInfoIsContainer;
const LSItemInfoFlags package = kLSItemInfoIsContainer | kLSItemInfoIsPackage;
const LSItemInfoFlags bundle = package | kLSItemInfoIsApplication;

LSItemInfoFlags flags_of(const std::string& path) { return item_info(path).flags; }

// Sets a language for a test, and restores the old one afterwards.
class Language {
  public:
    explicit Language(const char* language) : locale_(value_of("LC_ALL")) {
        setenv("LC_ALL", "en_US.UTF-8", 1);
        setenv("LANGUAGE", language, 1);
    }
    ~Language() {
        unsetenv("LANGUAGE");
        setenv("LC_ALL", locale_.c_str(), 1);
    }

  private:
    static std::string value_of(const char* name) {
        const char* value = getenv(name);
        return value ? value : "C.UTF-8";
    }
    std::string locale_;
};

// One of the desktop's own entries, removed after the test.
class Installed {
  public:
    explicit Installed(const std::string& name, const std::string& content)
        : path_(std::string(getenv("XDG_DATA_HOME")) + "/applications/" + name) {
        std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
        std::ofstream(path_) << content;
    }
    ~Installed() { unlink(path_.c_str()); }
    Installed(const Installed&) = delete;
    Installed& operator=(const Installed&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

const OSType application_type = 0x4150504C;  // 'APPL'
const LSItemInfoFlags application = plain | kLSItemInfoIsApplication;

const char editor[] =
    "[Desktop Entry]\n"
    "Type=Application\n"
    "Name=Editor\n"
    "Name[de]=Schreiber\n"
    "Name[sr@latin]=Ure\xC4\x91iva\xC4\x8D\n"
    "Exec=editor %F\n";

}  // namespace

TEST(ItemInfo, FoldersAreContainersAndFilesArePlain) {
    test::TempFolder folder;
    EXPECT_EQ(flags_of(folder.folder("sub")), container);
    EXPECT_EQ(flags_of(folder.file("file.txt")), plain);
    EXPECT_EQ(flags_of("/"), container);
}

TEST(ItemInfo, ASymbolicLinkIsNeverAContainer) {
    test::TempFolder folder;
    folder.folder("sub.app");
    folder.file("entry.desktop", editor);
    const LSItemInfoFlags link = kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile;
    EXPECT_EQ(flags_of(folder.link("a", "sub.app")), link);
    EXPECT_EQ(flags_of(folder.link("b.app", "sub.app")), link);
    EXPECT_EQ(flags_of(folder.link("c.desktop", "entry.desktop")), link);
    EXPECT_EQ(flags_of(folder.link("d", "missing")), link);
}

TEST(ItemInfo, BundlesAreToldByTheirExtension) {
    test::TempFolder folder;
    EXPECT_EQ(flags_of(folder.folder("Ink.app")), bundle);
    EXPECT_EQ(flags_of(folder.folder("Ink.APP")), bundle);
    EXPECT_EQ(flags_of(folder.folder("Notes.rtfd")), package);
    EXPECT_EQ(flags_of(folder.folder("Part.bundle")), package);
    EXPECT_EQ(flags_of(folder.folder("folder.d")), container);
    EXPECT_EQ(flags_of(folder.folder("app")), container);
    EXPECT_EQ(flags_of(folder.folder(".app")), container);
    EXPECT_EQ(flags_of(folder.folder("ends.with.dot.")), container);
    EXPECT_EQ(flags_of(folder.file("file.app")), plain);
}

TEST(ItemInfo, TheDesktopsOwnEntriesOfTypeApplicationAreApplications) {
    EXPECT_EQ(flags_of(Installed("editor.desktop", editor).path()), application);
    EXPECT_EQ(flags_of(Installed("inner/editor.desktop", editor).path()), application);
    EXPECT_EQ(flags_of(Installed("link.desktop", "[Desktop Entry]\nType=Link\n").path()), plain);
    EXPECT_EQ(flags_of(Installed("none.desktop", "").path()), plain);
    EXPECT_EQ(flags_of(Installed("bad.desktop", "\xFF\x00 no key file").path()), plain);
    EXPECT_EQ(flags_of(Installed("editor.desktop.txt", editor).path()), plain);
}

TEST(ItemInfo, HiddenEntriesAndThoseThatAreNotShownAreNoApplications) {
    for (const char* line : {"Hidden=true\n", "NoDisplay=true\n"}) {
        const Installed entry("quiet.desktop", std::string(editor) + line);
        EXPECT_EQ(flags_of(entry.path()), plain) << line;
        EXPECT_EQ(display_name(entry.path()), "quiet.desktop") << line;
    }
}

TEST(ItemInfo, AStrangersEntryIsAFileUnlessTheUserMayExecuteIt) {
    test::TempFolder folder;
    const std::string entry = folder.file("Holiday photo.jpg.desktop", editor);
    EXPECT_EQ(flags_of(entry), plain);
    EXPECT_EQ(item_info(entry).filetype, 0u);
    EXPECT_EQ(display_name(entry), "Holiday photo.jpg.desktop");
    EXPECT_EQ(flags_of(folder.folder("folder.desktop")), container);
    chmod(entry.c_str(), 0755);
    EXPECT_EQ(flags_of(entry), application);
    EXPECT_EQ(display_name(entry), "Holiday photo.jpg.desktop");
}

TEST(ItemInfo, EntriesOfADeclaredFolderAreBelieved) {
    test::TempFolder folder;
    const std::string entry = folder.file("apps/inner/editor.desktop", editor);
    const std::string other = folder.file("apps2/editor.desktop", editor);
    const std::string linked = folder.link("apps/linked.desktop", other);
    declare_applications_folder(folder.path("apps").c_str());
    EXPECT_EQ(flags_of(entry), application);
    EXPECT_EQ(display_name(entry), "Editor");
    EXPECT_EQ(flags_of(other), plain);
    EXPECT_EQ(item_info(linked).filetype, 0u);
    declare_applications_folder(nullptr);
    EXPECT_EQ(flags_of(entry), plain);
}

TEST(ItemInfo, TheHomeFolderAndTheWholeDiskAreNoApplicationsFolders) {
    test::TempFolder folder;
    const std::string entry = folder.file("editor.desktop", editor);
    const std::string at_home = std::string(getenv("HOME")) + "/editor.desktop";
    std::ofstream(at_home) << editor;
    for (const char* wide : {"/", const_cast<const char*>(getenv("HOME"))}) {
        declare_applications_folder(wide);
        EXPECT_EQ(flags_of(entry), plain) << wide;
        EXPECT_EQ(flags_of(at_home), plain) << wide;
    }
    declare_applications_folder(nullptr);
    unlink(at_home.c_str());
}

TEST(ItemInfo, ApplicationsAndWhatLeadsToThemAreOfTheTypeAPPL) {
    test::TempFolder folder;
    const Installed entry("editor.desktop", editor);
    EXPECT_EQ(item_info(entry.path()).filetype, application_type);
    EXPECT_EQ(item_info(folder.folder("Ink.app")).filetype, application_type);
    const std::string chain[] = {folder.link("a", entry.path()), folder.link("b", "a"),
                                 folder.link("c", "Ink.app"), folder.link("d", "c")};
    for (const std::string& link : chain) EXPECT_EQ(item_info(link).filetype, application_type);
    folder.file("note.txt");
    folder.file("strange.desktop", editor);
    const std::string others[] = {folder.link("e", "note.txt"), folder.link("f", "strange.desktop"),
                                  folder.link("g", "nowhere"), folder.link("h", "h"),
                                  folder.link("i", ".")};
    for (const std::string& link : others) EXPECT_EQ(item_info(link).filetype, 0u) << link;
}

TEST(ItemInfo, WhatOnlyLooksLikeADesktopEntryIsNotOpened) {
    test::TempFolder folder;
    ASSERT_EQ(mkfifo(folder.path("pipe.desktop").c_str(), 0644), 0);
    EXPECT_EQ(flags_of(folder.path("pipe.desktop")), plain);  // would wait for ever
    EXPECT_EQ(display_name(folder.path("pipe.desktop")), "pipe.desktop");
    const std::string large = std::string(editor) + "#" + std::string(1 << 20, 'x');
    EXPECT_EQ(flags_of(folder.file("large.desktop", large)), plain);
}

TEST(ItemInfo, TypeAndCreatorComeFromTheFinderInformation) {
    test::TempFolder folder;
    const std::string file = folder.file("tool");
    EXPECT_EQ(item_info(file).filetype, 0u);
    ASSERT_TRUE(folder.finder_info("tool", 0, "APPL")) << test::no_attributes;
    EXPECT_EQ(item_info(file).filetype, OSType{0x4150504C});
    EXPECT_EQ(item_info(file).flags, plain);
}

TEST(ItemInfo, InvisibleItemsSaySo) {
    test::TempFolder folder;
    folder.file(".hidden", "secret\n");
    EXPECT_EQ(flags_of(folder.folder("secret")), container | kLSItemInfoIsInvisible);
}

TEST(ItemInfo, OnlyWhatIsAskedForIsGiven) {
    test::TempFolder folder;
    const FSRef ref = test::reference(folder.folder("sub"));
    LSItemInfoRecord info;
    memset(&info, 0xFF, sizeof info);
    ASSERT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator, &info), noErr);
    EXPECT_EQ(info.flags, 0u);
    EXPECT_EQ(info.extension, nullptr);
    EXPECT_EQ(LSCopyItemInfoForRef(&ref, kLSRequestAllFlags, nullptr), paramErr);
}

TEST(DisplayName, AFilesNameStaysWithItsExtension) {
    test::TempFolder folder;
    const std::string names[] = {"plain",
                                 "text.txt",
                                 "new\nline",
                                 "\x01\x7F",
                                 std::string(255, 'n'),
                                 "caf\xC3\xA9",
                                 "\xF0\x9F\x93\x81 folder",
                                 "\xE6\x97\xA5\xE6\x9C\xAC"};
    for (const std::string& name : names) EXPECT_EQ(display_name(folder.file(name)), name);
    EXPECT_EQ(display_name(folder.folder("dir.d") + "/"), "dir.d");
    EXPECT_EQ(display_name("/"), "/");
}

TEST(DisplayName, ANameThatIsNotUtf8HasNone) {
    test::TempFolder folder;
    const std::string unknown = std::to_string(kLSUnknownErr);
    for (const char* name : {"\xFF", "a\xC3", "\xC0\xAF", "\xED\xA0\x80"}) {
        EXPECT_EQ(display_name(folder.file(name)), unknown);
    }
}

TEST(DisplayName, ADesktopEntryShowsItsNameInTheUsersLanguage) {
    const Installed installed("editor.desktop", editor);
    const std::string& entry = installed.path();
    EXPECT_EQ(display_name(entry), "Editor");
    EXPECT_EQ((Language("de"), display_name(entry)), "Schreiber");
    EXPECT_EQ((Language("fr:de_AT"), display_name(entry)), "Schreiber");
    EXPECT_EQ((Language("sr@latin"), display_name(entry)), "Ure\xC4\x91iva\xC4\x8D");
    EXPECT_EQ((Language("ja"), display_name(entry)), "Editor");
}

TEST(DisplayName, ADesktopEntryWithoutANameShowsItsFileName) {
    const char nameless[] = "[Desktop Entry]\nType=Application\nExec=x\n";
    EXPECT_EQ(display_name(Installed("a.desktop", nameless).path()), "a.desktop");
    EXPECT_EQ(display_name(Installed("b.desktop", "").path()), "b.desktop");
}

TEST(DisplayName, ALinkThatIsNamedAsAnEntryShowsTheNameOfTheDesktopsOwn) {
    test::TempFolder folder;
    const Installed entry("editor.desktop", editor);
    EXPECT_EQ(display_name(folder.link("x.desktop", entry.path())), "Editor");
    EXPECT_EQ(display_name(folder.link("x", entry.path())), "x");
    folder.file("strange", editor);
    EXPECT_EQ(display_name(folder.link("y.desktop", "strange")), "y.desktop");
    EXPECT_EQ(display_name(folder.link("z.desktop", "nowhere")), "z.desktop");
}

TEST(DisplayName, ABundleOfAnApplicationsFolderShowsTheNameItGivesItself) {
    test::TempFolder folder;
    declare_applications_folder(folder.path().c_str());
    folder.file("Ink.app/Resources/Info-gnustep.plist", "{ ApplicationName = \"Ink and Paper\"; }");
    folder.file("Pen.app/Contents/Info.plist",
                "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
                "<key>CFBundleDisplayName</key><string>Pencil</string></dict></plist>");
    folder.file("Odd.app/Resources/Info-gnustep.plist", "{ ApplicationName = (1, 2); }");
    folder.file("Bad.app/Resources/Info-gnustep.plist", "<?xml ((((");
    folder.folder("Bare.app");
    EXPECT_EQ(display_name(folder.path("Ink.app")), "Ink and Paper");
    EXPECT_EQ(display_name(folder.path("Pen.app")), "Pencil");
    EXPECT_EQ(display_name(folder.path("Odd.app")), "Odd.app");
    EXPECT_EQ(display_name(folder.path("Bad.app")), "Bad.app");
    EXPECT_EQ(display_name(folder.path("Bare.app")), "Bare.app");
    EXPECT_EQ(display_name(folder.link("Other.app", "Ink.app")), "Ink and Paper");
    declare_applications_folder(nullptr);
    EXPECT_EQ(display_name(folder.path("Ink.app")), "Ink.app");
    EXPECT_EQ(display_name(folder.path("Other.app")), "Other.app");
}
