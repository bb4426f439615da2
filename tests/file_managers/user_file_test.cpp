// Files of the user that other programs change at the same time.
#include "file_managers/user_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "file_managers/entry_file.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

struct UserFile : testing::Test {
    size_t entries() const {
        return static_cast<size_t>(
            std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }
    void write(const std::string& text) const { std::ofstream(path) << text; }

    test::TempFolder folder;
    const std::string path = folder.path("file");
    std::string problem;
};

TEST_F(UserFile, AFileThatHasChangedIsNotReplaced) {
    write("changed");
    EXPECT_EQ(write_user_file(path, "before", "ours", 0644, &problem), Change::outdated);
    EXPECT_EQ(test::read_file(path), "changed");
    EXPECT_EQ(entries(), 1u);
    EXPECT_EQ(write_user_file(path, "changed", "ours", 0644, &problem), Change::done);
    EXPECT_EQ(test::read_file(path), "ours");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(UserFile, AFileThatHasAppearedIsNotReplaced) {
    write("appeared");
    EXPECT_EQ(write_user_file(path, {}, "ours", 0644, &problem), Change::outdated);
    EXPECT_EQ(test::read_file(path), "appeared");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(UserFile, AFileThatHasGoneIsNotMade) {
    EXPECT_EQ(write_user_file(path, "before", "ours", 0644, &problem), Change::outdated);
    EXPECT_EQ(entries(), 0u);
}

TEST_F(UserFile, AFileThatHasChangedIsNotRemoved) {
    write("changed");
    EXPECT_EQ(remove_user_file(path, "before", 0, &problem), Change::outdated);
    EXPECT_EQ(test::read_file(path), "changed");
    EXPECT_EQ(entries(), 1u);
    EXPECT_EQ(remove_user_file(path, "changed", 0, &problem), Change::done);
    EXPECT_EQ(entries(), 0u);
}

TEST_F(UserFile, AnEntryIsPutIntoWhatAnotherProgramHasWrittenInBetween) {
    write("one ");
    EntryFile file{path, 0644, {}, {}};
    int looks = 0;
    file.put_in = [&](const FileText& now, int) {
        if (++looks == 1) write("one two ");
        return Edit{now.value_or("") + "entry", 0, {}};
    };
    EXPECT_TRUE(put_in(file, &problem)) << problem;
    EXPECT_EQ(test::read_file(path), "one two entry");
    looks = 0;
    file.take_out = [&](const FileText& now) {
        if (++looks == 1) write("one two entry three");
        std::string text = now.value_or("");
        return Edit{text.erase(text.find("entry"), 5), 0, {}};
    };
    EXPECT_TRUE(take_out(file, &problem)) << problem;
    EXPECT_EQ(test::read_file(path), "one two  three");
}

TEST_F(UserFile, AFileThatChangesAllTheTimeIsLeftAlone) {
    EntryFile file{path, 0644, {}, {}};
    int looks = 0;
    file.put_in = [&](const FileText&, int) {
        write(std::to_string(++looks));
        return Edit{"entry", 0, {}};
    };
    EXPECT_FALSE(put_in(file, &problem));
    EXPECT_NE(problem.find("keeps changing"), std::string::npos) << problem;
    EXPECT_EQ(test::read_file(path), std::to_string(looks));
    EXPECT_EQ(entries(), 1u);
}

TEST_F(UserFile, FoldersOfAFileThatCannotBeWrittenGoAgain) {
    // Short enough for a file, but not for the file that is to replace it.
    const std::string deep = folder.path("new/folders/" + std::string(250, 'a'));
    EXPECT_EQ(write_user_file(deep, {}, "ours", 0644, &problem), Change::failed);
    EXPECT_NE(problem.find("cannot change"), std::string::npos) << problem;
    EXPECT_EQ(entries(), 0u);
    // A folder of the user's stays.
    folder.folder("new");
    EXPECT_EQ(write_user_file(deep, {}, "ours", 0644, &problem), Change::failed);
    EXPECT_TRUE(fs::is_empty(folder.path("new")));
}

TEST_F(UserFile, ReadingDoesNotSpeakOfAChange) {
    FileText text;
    EXPECT_FALSE(read_user_file(folder.path(), &text, &problem));
    EXPECT_EQ(problem.rfind("cannot read ", 0), 0u) << problem;
}

}  // namespace
