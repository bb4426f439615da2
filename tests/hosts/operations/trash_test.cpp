#include "file_steps/trash.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "file_steps/folder.h"
#include "file_steps/trash_folders.h"
#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Descriptor;
using operations::move_into_trash;
using operations::name_in_path;
using operations::parent_of;
using operations::take_from_trash;
using operations::Thing;
using operations::Trashed;

namespace {

class TrashTest : public testing::Test {
  protected:
    void SetUp() override { setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1); }
    bool put(const std::string& path) { return put(thing_at(path)); }
    bool put(const Thing& thing, bool wanted = true) {
        return move_into_trash(
            thing, [&](const Trashed&) { return wanted; }, &trashed_, &problem_);
    }
    Thing thing_at(const std::string& path) {
        open_ = Descriptor(open(parent_of(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        Thing thing = {open_.get(), name_in_path(path), {}};
        EXPECT_TRUE(operations::look_at(thing.folder, thing.name.c_str(), &thing.what)) << path;
        return thing;
    }
    bool take(const std::string& path) {
        const Descriptor folder(open(parent_of(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        return take_from_trash(trashed_, folder.get(), name_in_path(path));
    }

    test::TempFolder folder_;
    test::OtherVolume volume_{folder_.path()};
    Descriptor open_;
    Trashed trashed_;
    std::string problem_;
};

TEST_F(TrashTest, TheInfoNamesThePathAndTheTime) {
    ASSERT_TRUE(put(folder_.file("in/a b\xff%\n.txt", "text"))) << problem_;
    EXPECT_EQ(trashed_.file, folder_.path("data/Trash/files/a b\xff%\n.txt"));
    const std::string info = test::read_file(trashed_.info);
    EXPECT_EQ(info.find("[Trash Info]\nPath=" + folder_.path("in/a%20b%FF%25%0A.txt") +
                        "\nDeletionDate="),
              0u)
        << info;
    EXPECT_EQ(test::read_file(trashed_.file), "text");
}

// Its volume is unknown, so the move itself shows whether it is the right one.
TEST_F(TrashTest, AHomeTrashThatCannotBeLookedAtIsTriedBeforeTheVolumes) {
    setenv("XDG_DATA_HOME", folder_.link("loop", "loop").c_str(), 1);
    const Descriptor folder(open(folder_.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const auto trashes = operations::trash_folders_of(folder.get(), folder_.path());
    ASSERT_GT(trashes.size(), 1u);
    EXPECT_EQ(trashes.front().path, folder_.path("loop/Trash"));
    EXPECT_FALSE(trashes.front().is_home);
}

TEST_F(TrashTest, TakenNamesAreNumberedAlsoWithoutAnInfo) {
    folder_.file("data/Trash/files/a", "older");
    folder_.folder("data/Trash/info");
    ASSERT_TRUE(put(folder_.file("a", "text"))) << problem_;
    EXPECT_EQ(trashed_.file, folder_.path("data/Trash/files/a.2"));
    EXPECT_EQ(test::names_in(folder_.path("data/Trash/info")),
              std::vector<std::string>({"a.2.trashinfo"}));
    EXPECT_EQ(test::read_file(folder_.path("data/Trash/files/a")), "older");
}

TEST_F(TrashTest, ALongNameIsShortenedForItsInfo) {
    const std::string name(255, 'n');
    ASSERT_TRUE(put(folder_.file(name, "text"))) << problem_;
    EXPECT_EQ(trashed_.file, folder_.path("data/Trash/files/" + std::string(245, 'n')));
    EXPECT_NE(test::read_file(trashed_.info).find(name), std::string::npos);
}

TEST_F(TrashTest, AnotherVolumeHasATrashOfItsOwn) {
    if (volume_.path().empty()) GTEST_SKIP() << "/dev/shm is no file system of its own";
    const std::string path = volume_.path() + "/a";
    ASSERT_EQ(rename(folder_.file("x", "text").c_str(), path.c_str()), -1);
    ASSERT_EQ(symlink("text", path.c_str()), 0);
    ASSERT_TRUE(put(path)) << problem_;
    EXPECT_EQ(trashed_.file.find("/dev/shm/.Trash-" + std::to_string(getuid()) + "/files/a"), 0u);
    // As the top of the volume sees it.
    EXPECT_NE(test::read_file(trashed_.info).find("Path=" + path.substr(9) + "\n"),
              std::string::npos);
    EXPECT_TRUE(take(path));
}

TEST_F(TrashTest, WhatComesBackLeavesNoInfo) {
    const std::string path = folder_.file("in/a", "text");
    ASSERT_TRUE(put(path));
    EXPECT_TRUE(take(path));
    EXPECT_EQ(test::read_file(path), "text");
    EXPECT_EQ(access(trashed_.info.c_str(), F_OK), -1);
}

TEST_F(TrashTest, NothingComesBackOverSomethingElse) {
    const std::string path = folder_.file("in/a", "text");
    ASSERT_TRUE(put(path));
    folder_.file("in/a", "newer");
    EXPECT_FALSE(take(path));
    EXPECT_EQ(test::read_file(path), "newer");
    EXPECT_EQ(test::read_file(trashed_.file), "text");
}

TEST_F(TrashTest, WhoeverIsAskedBeforeCanKeepIt) {
    const std::string path = folder_.file("in/a", "text");
    EXPECT_FALSE(put(thing_at(path), false));
    EXPECT_EQ(test::read_file(path), "text");
    EXPECT_EQ(test::names_in(folder_.path("data/Trash/info")), std::vector<std::string>());
}

TEST_F(TrashTest, WhatIsNoTrashIsNamedAndNoOtherIsTried) {
    const std::string path = folder_.file("in/a", "text"), trash = folder_.file("data/Trash", "");
    EXPECT_FALSE(put(path));
    EXPECT_EQ(problem_, "cannot move \"a\" to the trash: \"" + trash +
                            "\", where the trash should be, is not a folder");
    EXPECT_EQ(test::read_file(path), "text");
}

TEST_F(TrashTest, ATrashOfSomebodyElseIsNamed) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    const std::string path = folder_.file("in/a", "text"), trash = folder_.folder("data/Trash");
    ASSERT_EQ(chown(trash.c_str(), 12345, 12345), 0);
    EXPECT_FALSE(put(path));
    EXPECT_EQ(problem_, "cannot move \"a\" to the trash: the trash \"" + trash +
                            "\" belongs to somebody else");
    EXPECT_EQ(test::names_in(trash), std::vector<std::string>());
}

TEST_F(TrashTest, OnlyTheVeryThingThatWasLookedAtGoes) {
    const std::string path = folder_.file("in/a", "text"), other = folder_.file("in/b", "other");
    const auto exchange = [&](const Trashed&) { return rename(other.c_str(), path.c_str()) == 0; };
    EXPECT_FALSE(move_into_trash(thing_at(path), exchange, &trashed_, &problem_));
    EXPECT_EQ(problem_, "cannot move \"a\" to the trash: it was replaced by another file");
    EXPECT_EQ(test::read_file(path), "other");
    EXPECT_EQ(test::names_in(folder_.path("data/Trash/info")), std::vector<std::string>());
}

TEST_F(TrashTest, ManyOfOneNameFindNumbersForThemselves) {
    for (int count = 0; count < 80; count++) {
        ASSERT_TRUE(put(folder_.file("in/a", std::to_string(count)))) << problem_;
        EXPECT_EQ(test::read_file(trashed_.file), std::to_string(count));
    }
    EXPECT_EQ(test::names_in(folder_.path("data/Trash/files")).size(), 80u);
}

TEST_F(TrashTest, ALinkGoesItselfAndNotWhatItLeadsTo) {
    const std::string target = folder_.file("target", "text");
    ASSERT_TRUE(put(folder_.link("link", target)));
    EXPECT_EQ(test::read_file(target), "text");
}

}  // namespace
