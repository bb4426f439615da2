#include "desktop/entry_file.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <fstream>

#include "support/temp_folder.h"

namespace {

using files::EntryFile;
using files::read_entry_file;

const std::string head = "[Desktop Entry]\nType=Application\n";

bool file_times_are_coarse = false;
time_t seconds_ahead = 0;  // of the machine's clock

std::string name_at(const std::string& path) {
    const EntryFile* entry = read_entry_file(path);
    return entry ? entry->name : "none";
}

TEST(EntryFile, TellsWhatTheFileSays) {
    test::TempFolder folder;
    const std::string path = folder.file(
        "a.desktop", head + "Name=Paint\nIcon=paint.png\nExec=paint %F\nStartupWMClass=Painter\n");
    const EntryFile* entry = read_entry_file(path);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->name, "Paint");
    EXPECT_EQ(entry->plain_name, "Paint");
    EXPECT_EQ(entry->icon, "paint") << "a name has no ending";
    EXPECT_EQ(entry->command, "paint %F");
    EXPECT_EQ(entry->window_class, "Painter");
    EXPECT_FALSE(entry->is_hidden);
    EXPECT_TRUE(entry->is_displayed);
}

TEST(EntryFile, TellsWhatIsHiddenAndWhatIsNotDisplayed) {
    test::TempFolder folder;
    const EntryFile* entry = read_entry_file(folder.file("a.desktop", head + "Hidden=true\n"));
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->is_hidden);
    entry = read_entry_file(folder.file("b.desktop", head + "NoDisplay=true\nIcon=/p/a.png\n"));
    ASSERT_NE(entry, nullptr);
    EXPECT_FALSE(entry->is_displayed);
    EXPECT_EQ(entry->icon, "/p/a.png") << "a path keeps its ending";
}

TEST(EntryFile, WhatIsNoEntryOfAnApplicationHasNone) {
    test::TempFolder folder;
    EXPECT_EQ(name_at(folder.file("link.desktop", "[Desktop Entry]\nType=Link\nName=a\n")), "none");
    EXPECT_EQ(name_at(folder.file("noise.desktop", std::string("\0\xff", 2))), "none");
    EXPECT_EQ(name_at(folder.path("missing.desktop")), "none");
    EXPECT_EQ(name_at(folder.folder("folder.desktop")), "none");
    EXPECT_EQ(name_at(folder.file("huge.desktop",
                                  head + "Name=a\n#" + std::string(256 * 1024, 'x') + "\n")),
              "none");
    const std::string fifo = folder.path("fifo.desktop");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(name_at(fifo), "none");
}

// On a disk whose times are whole seconds, nearly all these changes have the same time and size.
TEST(EntryFile, AChangeIsSeenAlsoRightAfterTheLast) {
    test::TempFolder folder;
    file_times_are_coarse = true;
    for (int i = 0; i < 200; i++) {
        const std::string name = std::to_string(1000 + i);
        ASSERT_EQ(name_at(folder.file("a.desktop", head + "Name=" + name + "\n")), name);
    }
    file_times_are_coarse = false;
    unlink(folder.path("a.desktop").c_str());
    EXPECT_EQ(name_at(folder.path("a.desktop")), "none");
}

TEST(EntryFile, TheNameFollowsTheUsersLanguage) {
    test::TempFolder folder;
    const std::string path = folder.file("a.desktop", head + "Name=Paint\nName[fi]=Maali\n");
    EXPECT_EQ(name_at(path), "Paint");
    setenv("LANGUAGE", "fi", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(name_at(path), "Maali");
    const EntryFile* entry = read_entry_file(path);
    EXPECT_EQ(entry ? entry->plain_name : "none", "Paint");
    unsetenv("LANGUAGE");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(name_at(path), "Paint");
}

// How often this process has read anything.
long reads() {
    long count = 0;
    std::ifstream in("/proc/self/io");
    for (std::string word; in >> word;) {
        if (word == "syscr:") in >> count;
    }
    return count;
}

bool is_read_again(const std::string& path) {
    const long first = reads(), second = reads();
    read_entry_file(path);
    return reads() - second > second - first;
}

TEST(EntryFile, AFileThatStaysAsItIsIsReadOnce) {
    test::TempFolder folder;
    const std::string path = folder.file("a.desktop", head + "Name=Paint\n");
    EXPECT_TRUE(is_read_again(path)) << "for the first time";
    EXPECT_TRUE(is_read_again(path)) << "a change within the same second could have the same time";
    seconds_ahead = 10;
    EXPECT_TRUE(is_read_again(path)) << "for the last time";
    EXPECT_FALSE(is_read_again(path));
    EXPECT_EQ(name_at(path), "Paint");
    folder.file("a.desktop", head + "Name=Brush\n");
    EXPECT_EQ(name_at(path), "Brush");
    seconds_ahead = 0;
}

TEST(EntryFile, AChangeThatFollowedTheReadAtOnceIsSeenLater) {
    test::TempFolder folder;
    file_times_are_coarse = true;
    const std::string path = folder.file("a.desktop", head + "Name=Paint\n");
    EXPECT_EQ(name_at(path), "Paint");
    folder.file("a.desktop", head + "Name=Brush\n");
    seconds_ahead = 10;
    EXPECT_EQ(name_at(path), "Brush");
    file_times_are_coarse = false;
    seconds_ahead = 0;
}

}  // namespace

// Both replace the C library's functions.
extern "C" int stat(const char* path, struct stat* what) noexcept {
    const int result = fstatat(AT_FDCWD, path, what, 0);
    if (file_times_are_coarse) what->st_mtim.tv_nsec = what->st_ctim.tv_nsec = 0;
    return result;
}

extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, now);
    if (clock == CLOCK_REALTIME) now->tv_sec += seconds_ahead;
    return static_cast<int>(result);
}
