// When a menu is read as a whole, no more submenus are opened if it would never end or not fit in
// memory.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "hosts/menu_command.h"

namespace {

using test::MenuCommand;
using test::Outcome;

TEST_F(MenuCommand, EndsInALoopOfLinksAndSaysWhatItLeftClosed) {
    folder.folder("top");
    folder.link("top/again", ".");
    const Outcome outcome = menu({"--print", "--depth", "1000000", folder.path("top")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find("1 submenu was not opened;"), std::string::npos) << outcome.err;
}

TEST_F(MenuCommand, ReadsNoMoreRowsThanItCanHold) {
    constexpr int links = 48;  // their third level would have 110592 rows, their fourth millions
    folder.folder("top");
    for (int i = 0; i < links; ++i) folder.link("top/" + std::to_string(i), ".");
    const Outcome outcome = menu({"--print", "--depth", "5", folder.path("top")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find(" not opened; "), std::string::npos) << outcome.err;
    const auto rows = std::count(outcome.out.begin(), outcome.out.end(), '\n');
    EXPECT_GT(rows, 100000);
    EXPECT_LT(rows, 100000 + 6 * links);  // rows of the levels that are still open
}

// The process is told that it has this much memory.
TEST_F(MenuCommand, OpensNoFurtherSubmenuFromAGigabyteOfMemoryOn) {
    folder.file("top/inner/a.txt");
    const test::Words words = {"--print", "--depth", "2", folder.path("top")};
    const auto with_pages = [&](long pages) {
        const std::string told = folder.file("pages", "0 " + std::to_string(pages) + " 0\n");
        return menu(words, {{"LD_PRELOAD", TOLD_MEMORY}, {"DELVIO_TEST_PAGES", told}});
    };
    const long gigabyte = (1L << 30) / sysconf(_SC_PAGESIZE);
    const Outcome below = with_pages(gigabyte - 1), full = with_pages(gigabyte);
    EXPECT_EQ(below.status, 0);
    EXPECT_EQ(below.err, "");
    EXPECT_NE(below.out.find("a.txt"), std::string::npos) << below.out;
    EXPECT_EQ(full.status, 0);
    EXPECT_NE(full.err.find(" not opened; "), std::string::npos) << full.err;
    EXPECT_EQ(full.out.find("a.txt"), std::string::npos) << full.out;
}

}  // namespace
