// The next start removes what a killed operation leaves in the trash, and nothing else.
#include "operations/left_trash_info.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <fcntl.h>
#include <unistd.h>

#include <fstream>

#include "hosts/operations/scene.h"
#include "operations/undo_record.h"
#include "support/temp_folder.h"

namespace {

using Names = std::vector<std::string>;

class LeftTrashInfo : public testing::Test {
  protected:
    // The state that a process leaves when it is killed between the note and the move: the note
    // exists, and then the step is written down.
    void leave_behind(const std::string& after = "") {
        folder_.file("trash/info/a.trashinfo", "[Trash Info]\nPath=/a\n");
        const std::string text = operations::begun_entry("1") +
                                 operations::trashing_entry("/a", {file_, info_}, 7) + after;
        folder_.file("state/last-operation", text);
    }
    Names left() { return test::names_in(folder_.path("trash/info")); }

    test::TempFolder folder_;
    const std::string state_ = folder_.folder("state");
    const std::string file_ = folder_.folder("trash/files") + "/a";
    const std::string info_ = folder_.folder("trash/info") + "/a.trashinfo";
};

}  // namespace

TEST_F(LeftTrashInfo, ANoteWithoutAFileIsRemoved) {
    leave_behind();
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names());
}

TEST_F(LeftTrashInfo, TheNextStartRemovesItWithoutBeingWaitedFor) {
    leave_behind();
    operations::begin_to_remove_left_trash_info(state_);
    while (!left().empty()) usleep(10000);
}

TEST_F(LeftTrashInfo, ANoteWhoseFileIsThereIsKept) {
    leave_behind();
    std::ofstream(file_) << "a";
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"a.trashinfo"}));
}

TEST_F(LeftTrashInfo, AStepThatWasTakenBackIsNotLookedAt) {
    leave_behind(operations::not_done_entry());
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"a.trashinfo"}));
}

TEST_F(LeftTrashInfo, ANoteOfAnotherProgramsThatCameLaterIsKept) {
    leave_behind();
    const timespec ancient[] = {{1, 0}, {1, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder_.path("state/last-operation").c_str(), ancient, 0), 0);
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"a.trashinfo"}));
}

TEST_F(LeftTrashInfo, AFileThatIsNoNoteIsKeptWhateverADamagedJournalSays) {
    const std::string other = folder_.file("trash/info/b.trashinfo", "b");
    folder_.file("state/last-operation", operations::begun_entry("1") +
                                             operations::trashing_entry("/a", {file_, other}, 7));
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"b.trashinfo"}));
}

TEST_F(LeftTrashInfo, WhatALivingOperationHasWrittenIsKept) {
    leave_behind();
    const int journal = open(folder_.path("state/last-operation").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(journal, LOCK_EX), 0);
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"a.trashinfo"}));
    close(journal);
}

TEST_F(LeftTrashInfo, AStepThatWasFollowedByAnotherIsNotLookedAt) {
    leave_behind(std::string("moving\0/b", 9));
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left().size(), 1u);
}

TEST_F(LeftTrashInfo, AFolderInTheNotesPlaceIsKept) {
    leave_behind();
    unlink(info_.c_str());
    folder_.folder("trash/info/a.trashinfo");
    operations::remove_left_trash_info(state_);
    EXPECT_EQ(left(), Names({"a.trashinfo"}));
}
