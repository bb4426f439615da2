#include <Carbon/Carbon.h>
#include <dirent.h>
#include <errno.h>
#include <host/name_order.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "carbon/folder_listing.h"
#include "desktop/moments.h"
#include "hosts/operations/failing_calls.h"
#include "platform/carbon/file_questions.h"
#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

using test::reference;

// A folder's change time cannot distinguish two changes within one tick of the clock.
bool has_changed_in_this_tick(const std::string& folder) {
    struct stat status;
    timespec now;
    EXPECT_EQ(stat(folder.c_str(), &status), 0);
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return std::pair(status.st_ctim.tv_sec, status.st_ctim.tv_nsec) >=
           std::pair(now.tv_sec, now.tv_nsec);
}

// The names in order, as the plug-in reads them.
std::vector<std::string> read(const std::string& folder) {
    dirent** entries = nullptr;
    const int count = scandir((folder + "/").c_str(), &entries, nullptr, alphasort);
    std::vector<std::string> names;
    for (int i = 0; i < count; i++) {
        if (entries[i]->d_name[0] != '.') names.push_back(entries[i]->d_name);
        free(entries[i]);
    }
    free(entries);
    return names;
}

// The same, and all following queries have a listing.
std::vector<std::string> list(const std::string& folder) {
    while (has_changed_in_this_tick(folder)) usleep(1000);
    return read(folder);
}

// With each tick of the clock a listed folder is read again.
void let_the_clock_tick() {
    const int64_t now = files::milliseconds_now();
    while (files::milliseconds_now() == now) usleep(1000);
}

bool take(const std::string& path, files::ListedEntry* entry) {
    return files::take_listed_entry(path.c_str(), path.size(), files::milliseconds_now(), entry);
}

OSStatus make(const std::string& path, FSRef* ref, Boolean* is_directory) {
    return FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), ref, is_directory);
}

bool is_directory(const std::string& path) {
    FSRef ref;
    Boolean result = false;
    EXPECT_EQ(make(path, &ref, &result), noErr) << path;
    return result;
}

UInt16 finder_flags(const std::string& path) {
    const FSRef ref = reference(path);
    FSCatalogInfo info = {};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr),
              noErr);
    FileInfo finder;
    memcpy(&finder, info.finderInfo, sizeof finder);
    return finder.finderFlags;
}

}  // namespace

TEST(FolderListing, TellsEachEntryOnceInItsOrder) {
    test::TempFolder folder;
    folder.file("file");
    folder.folder("folder");
    folder.link("link", "nowhere");
    list(folder.path());
    files::ListedEntry entry;
    ASSERT_TRUE(take(folder.path("file"), &entry));
    EXPECT_EQ(entry.type, DT_REG);
    EXPECT_FALSE(take(folder.path("file"), &entry));
    ASSERT_TRUE(take(folder.path("folder"), &entry));
    EXPECT_EQ(entry.type, DT_DIR);
    ASSERT_TRUE(take(folder.path("link"), &entry));
    EXPECT_EQ(entry.type, DT_LNK);
    EXPECT_FALSE(take(folder.path("link"), &entry));
}

TEST(FolderListing, HiddenNamesMayBeLeftOut) {
    test::TempFolder folder;
    folder.file("!first");
    folder.file(".hidden one");
    folder.file(".hidden two");
    folder.file("last");
    files::ListedEntry entry;
    list(folder.path());
    EXPECT_TRUE(take(folder.path("!first"), &entry));
    EXPECT_TRUE(take(folder.path("last"), &entry));
    list(folder.path());
    EXPECT_TRUE(take(folder.path("!first"), &entry));
    EXPECT_TRUE(take(folder.path(".hidden one"), &entry));
    EXPECT_TRUE(take(folder.path(".hidden two"), &entry));
    EXPECT_TRUE(take(folder.path("last"), &entry));
}

TEST(FolderListing, AnotherPathBetweenTwoEntriesDoesNotDisturbIt) {
    test::TempFolder folder;
    folder.file(".hidden");
    folder.file("a");
    folder.file("b");
    folder.file("c");
    list(folder.path());
    files::ListedEntry entry;
    EXPECT_TRUE(take(folder.path("a"), &entry));
    EXPECT_FALSE(take(folder.path("c"), &entry));
    EXPECT_FALSE(take("/usr", &entry));
    EXPECT_FALSE(take(folder.path("b/below"), &entry));
    EXPECT_FALSE(take(folder.path(), &entry));
    EXPECT_TRUE(take(folder.path("b"), &entry));
}

TEST(FolderListing, AnEntryThatHasBecomeAnotherIsSeenAsWhatItIsNow) {
    test::TempFolder folder;
    folder.file("first");
    folder.file("second");
    list(folder.path());
    EXPECT_FALSE(is_directory(folder.path("first")));
    ASSERT_EQ(unlink(folder.path("second").c_str()), 0);
    folder.folder("second");
    let_the_clock_tick();
    EXPECT_TRUE(is_directory(folder.path("second")));
}

TEST(FolderListing, AnEntryThatHasGoneHasNoReference) {
    test::TempFolder folder;
    folder.file("first");
    folder.file("second");
    list(folder.path());
    ASSERT_EQ(unlink(folder.path("first").c_str()), 0);
    FSRef ref;
    Boolean directory;
    EXPECT_EQ(make(folder.path("first"), &ref, &directory), fnfErr);
    EXPECT_EQ(make(folder.path("second"), &ref, &directory), noErr);
}

TEST(FolderListing, AFolderPutInThePlaceOfTheListedOneIsNotTakenForIt) {
    test::TempFolder folder;
    folder.file("listed/a");
    folder.file("listed/b");
    folder.folder("other/a");
    folder.folder("other/b");
    list(folder.path("listed"));
    EXPECT_FALSE(is_directory(folder.path("listed/a")));
    fs::rename(folder.path("listed"), folder.path("away"));
    fs::rename(folder.path("other"), folder.path("listed"));
    let_the_clock_tick();
    EXPECT_TRUE(is_directory(folder.path("listed/b")));
}

TEST(FolderListing, AFolderThatHasJustChangedIsNotKept) {
    test::TempFolder folder;
    folder.file("first");
    bool tried = false;
    for (int attempt = 0; attempt < 1000 && !tried; attempt++) {
        ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
        read(folder.path());
        tried = has_changed_in_this_tick(folder.path());
        files::ListedEntry entry;
        if (tried) EXPECT_FALSE(take(folder.path("first"), &entry));
    }
    EXPECT_TRUE(tried);
}

TEST(FolderListing, NothingIsKeptOpen) {
    test::TempFolder folder;
    folder.file("file");
    list(folder.path());
    for (const auto& open : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        EXPECT_NE(fs::read_symlink(open, gone), folder.path());
    }
}

TEST(FolderListing, FinderInformationOfALargeFolderIsThatOfEachEntry) {
    test::TempFolder folder;
    folder.file("probe");
    ASSERT_TRUE(folder.finder_info("probe", 0)) << test::no_attributes;
    for (unsigned i = 0; i < 1000; i++) {
        const std::string name = "entry " + std::to_string(i);
        switch (i % 4) {
            case 0:
                folder.link(name, "nowhere");
                continue;
            case 1:
                folder.folder(name);
                break;
            default:
                folder.file(name);
        }
        if (i % 3 == 0) ASSERT_TRUE(folder.finder_info(name, i % 8 << 1));
    }
    for (const std::string& name : list(folder.path())) {
        if (name == "probe") continue;
        const unsigned i = static_cast<unsigned>(std::stoul(name.substr(6)));
        const unsigned label = i % 4 != 0 && i % 3 == 0 ? i % 8 : 0;
        EXPECT_EQ((finder_flags(folder.path(name)) & kColor) >> 1, label) << name;
        EXPECT_EQ((finder_flags(folder.path(name)) & kIsAlias) != 0, i % 4 == 0) << name;
    }
}

TEST(FolderListing, ALargeFolderIsReadAlsoWhereNoThreadIsToBeHad) {
    test::TempFolder folder;
    const size_t count = 600;
    for (size_t i = 0; i < count; i++) folder.file("a " + std::to_string(i));
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const bool filtered =
            test::fail_call(SYS_clone3, EAGAIN) && test::fail_call(SYS_clone, EAGAIN);
        _exit(!filtered ? 2 : list(folder.path()).size() == count ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

// The first thread has read one entry of three, the second one all of its own.
TEST(FolderListing, AttributesStandAtTheirEntriesThoughOneThreadStoppedEarly) {
    files::Attributes first, second;
    first.add({{1}});
    second.add({});
    second.add({{2}});
    first.append(3, second);
    EXPECT_EQ(first.state(0), files::Attributes::SOME);
    EXPECT_EQ(first.state(1), files::Attributes::UNKNOWN);
    EXPECT_EQ(first.state(2), files::Attributes::UNKNOWN);
    EXPECT_EQ(first.state(3), files::Attributes::NONE);
    ASSERT_EQ(first.state(4), files::Attributes::SOME);
    EXPECT_EQ(first.information(0).bytes[0], 1);
    EXPECT_EQ(first.information(4).bytes[0], 2);
    EXPECT_EQ(first.state(5), files::Attributes::UNKNOWN);
}

TEST(FolderListing, ReadingALargeFolderLeavesTheCurrentFolder) {
    test::TempFolder folder;
    for (int i = 0; i < 1000; i++) folder.file(std::to_string(i));
    const fs::path before = fs::current_path();
    EXPECT_EQ(list(folder.path()).size(), 1000u);
    EXPECT_EQ(fs::current_path(), before);
}

// The names in the order of a language.
static std::vector<std::string> read_in(const char* language, const std::string& folder) {
    const std::string before = getenv("LC_ALL") ?: "";
    setenv("LC_ALL", language, 1);
    order_names_by_language([] { return true; });
    const std::vector<std::string> names = read(folder);
    order_names_by_language(nullptr);
    setenv("LC_ALL", before.c_str(), 1);
    return names;
}

TEST(FolderListing, ComesInTheOrderOfTheLanguageIfTheHostWants) {
    test::TempFolder folder;
    // The first name is composed, the second is not.
    for (const char* name : {"Zug", "\u00DCbung 9", "U\u0308bung 10", "Tisch", "apfel", "\u00D6l"})
        folder.file(name);
    EXPECT_EQ(read(folder.path()), (std::vector<std::string>{"Tisch", "U\u0308bung 10", "Zug",
                                                             "apfel", "\u00D6l", "\u00DCbung 9"}))
        << "the caller's own order";
    EXPECT_EQ(read_in("de_DE.UTF-8", folder.path()),
              (std::vector<std::string>{"apfel", "\u00D6l", "Tisch", "\u00DCbung 9",
                                        "U\u0308bung 10", "Zug"}));
    EXPECT_EQ(read_in("sv_SE.UTF-8", folder.path()).back(), "\u00D6l");
}

// A listing answers for the entry that its place in the new order names.
TEST(FolderListing, KnowsTheEntriesInTheOrderOfTheLanguage) {
    test::TempFolder folder;
    folder.file("Zug");
    folder.folder("\u00DCbung");
    folder.file("Tisch");
    while (has_changed_in_this_tick(folder.path())) usleep(1000);
    const std::vector<std::string> names = read_in("de_DE.UTF-8", folder.path());
    ASSERT_EQ(names.size(), 3u);
    for (const std::string& name : names) {
        FSRef ref;
        Boolean is_directory = false;
        ASSERT_EQ(make(folder.path(name), &ref, &is_directory), noErr);
        EXPECT_EQ(is_directory != 0, name == "\u00DCbung") << name;
    }
}
