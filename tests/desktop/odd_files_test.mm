// Names and files that a disk can hold and that a menu must handle.
#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <stdio.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include "desktop/desk.h"
#include "support/unprivileged.h"

namespace {

using test::Steps;
using Titles = std::vector<std::string>;

class OddFiles : public test::Desk {
  protected:
    void SetUp() override { select({folder_.folder("top")}); }
};

void make_socket(const std::string& path) {
    const int socket_fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(bind(socket_fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(socket_fd);
}

}  // namespace

TEST_F(OddFiles, PipesSocketsAndBrokenLinksAreRowsLikeOthers) {
    mkfifo(folder_.path("top/a pipe").c_str(), 0600);
    make_socket(folder_.path("top/a socket"));
    folder_.link("top/gone", "nowhere");
    folder_.link("top/loop", "loop");
    folder_.link("top/null", "/dev/null");
    EXPECT_EQ(walk({"top"}), Titles({"a pipe", "a socket", "gone", "loop", "null"}));
}

TEST_F(OddFiles, ALinkToAFolderOpensAsThatFolder) {
    folder_.file("elsewhere/inside.txt");
    folder_.link("top/link", "../elsewhere");
    EXPECT_EQ(walk({"top", "link"}), Titles({"inside.txt"}));
}

TEST_F(OddFiles, ANameWithControlCharactersIsOneRowAndOpens) {
    folder_.file("top/two\nlines\tand\ra\x1b[31m bell\a.txt", "text");
    const Titles shown = walk({"top"});
    ASSERT_EQ(shown.size(), 1u);
    pick({"top", shown[0]});
    EXPECT_EQ(program().wait(),
              Titles({folder_.path("top/two\nlines\tand\ra\x1b[31m bell\a.txt")}));
}

TEST_F(OddFiles, ANameOf255BytesIsShortenedAndOpensWhole) {
    const std::string name = std::string(251, 'n') + ".txt";
    folder_.file("top/" + name, "text");
    const Titles shown = walk({"top"});
    EXPECT_EQ(shown, Titles({std::string(16, 'n') + "…" + std::string(12, 'n') + ".txt"}));
    pick({"top", shown[0]});
    EXPECT_EQ(program().wait(), Titles({folder_.path("top/" + name)}));
}

TEST_F(OddFiles, ANameThatIsNotUtf8HasARowAndLeavesTheOthersUsable) {
    folder_.file("top/bad\xff.txt", "text");
    folder_.file("top/good.txt", "text");
    const Titles shown = walk({"top"});
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(std::count(shown.begin(), shown.end(), "good.txt"), 1);
    EXPECT_EQ(shown[0].rfind("Delvio: No name found?", 0), 0u) << shown[0];
    pick({"top", "good.txt"});
    EXPECT_EQ(program().wait(), Titles({folder_.path("top/good.txt")}));
}

TEST_F(OddFiles, AFolderThatMayNotBeReadSaysThatItIsEmpty) {
    folder_.file("top/closed/secret");
    chmod(folder_.path("top/closed").c_str(), 0);
    const test::Unprivileged obeying;
    EXPECT_EQ(walk({"top", "closed"}), Titles({"Folder is empty"}));
}

TEST_F(OddFiles, AFolderOfTenThousandOpensScrollsToItsEndAndCloses) {
    const std::string first = folder_.file("top/file 0", "text");
    for (int i = 1; i < 10000; i++) {
        ASSERT_EQ(link(first.c_str(), folder_.path("top/file " + std::to_string(i)).c_str()), 0);
    }
    Titles shown;
    std::string last;
    pop_up([&](Steps& steps) {
        hover_along(steps, {"top"});
        steps
            .when(
                "the level", [&] { return is_open(1); },
                [&] {
                    shown = titles(1);
                    input().key("Right");
                    input().key("End");
                })
            .when(
                "its last row", [&] { return highlighted(1) == "file 9999"; },
                [&] {
                    last = highlighted(1);
                    EXPECT_TRUE(is_on_screen("file 9999"));
                    escape();
                });
    });
    ASSERT_EQ(shown.size(), 10000u);
    EXPECT_EQ(shown[9], "file 9");
    EXPECT_EQ(shown[10], "file 10");
    EXPECT_EQ(last, "file 9999");
}
