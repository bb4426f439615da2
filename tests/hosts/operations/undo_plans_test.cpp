// What an undo does with each step, whatever has become of its files since.
#include "operations/undo_checks.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "hosts/operations/scene.h"
#include "support/temp_folder.h"

using operations::Need;
using operations::Plan;
using operations::Step;

namespace {

class UndoPlans : public testing::Test {
  protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", folder_.folder("data").c_str(), 1);
        source_ = folder_.folder("from") + "/file";
        target_ = folder_.folder("to") + "/file";
    }
    static unsigned long long inode(const std::string& path) {
        struct stat what = {};
        EXPECT_EQ(lstat(path.c_str(), &what), 0) << path;
        return what.st_ino;
    }
    static void write(const std::string& path, const std::string& text) {
        std::ofstream(path) << text;
    }
    // Both files have these bytes and one time.
    void write_both(const std::string& at_source, const std::string& at_target) {
        write(source_, at_source);
        write(target_, at_target);
        const timespec times[2] = {{1000, 1}, {1000, 1}};
        for (const std::string& path : {source_, target_}) {
            ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        }
    }
    Step moved() const {
        Step step;
        step.source = source_;
        step.target = target_;
        return step;
    }
    static Plan plan_of(const Step& step) { return plans_of({step}).front(); }
    static std::vector<Plan> plans_of(const std::vector<Step>& steps) {
        return operations::UndoChecks(steps).plans();
    }
    static void expect(const Step& step, Need need) {
        const Plan plan = plan_of(step);
        EXPECT_EQ(plan.need, need);
        EXPECT_EQ(plan.problem, "");
    }
    static void expect_problem(const Step& step, const std::string& problem) {
        const Plan plan = plan_of(step);
        EXPECT_EQ(plan.need, Need::Nothing);
        EXPECT_EQ(plan.problem, problem);
    }

    test::TempFolder folder_;
    std::string source_, target_;
};

}  // namespace

TEST_F(UndoPlans, AMoveThatIsBackNeedsNothing) {
    write(source_, "bytes");
    Step step = moved();
    step.inode = inode(source_);
    expect(step, Need::Nothing);
    step.restored = step.inode;
    step.inode = 1;
    expect(step, Need::Nothing);
}

TEST_F(UndoPlans, AFileThatHasBothNamesLosesTheNewOne) {
    write(source_, "bytes");
    ASSERT_EQ(link(source_.c_str(), target_.c_str()), 0);
    Step step = moved();
    step.inode = inode(source_);
    expect(step, Need::RemoveTarget);
    step.target = folder_.path("from/new");
    ASSERT_EQ(link(source_.c_str(), step.target.c_str()), 0);
    expect(step, Need::RemoveTarget);
}

TEST_F(UndoPlans, AFileThatIsItsOwnTargetKeepsItsName) {
    write(source_, "bytes");
    const std::string other_way = folder_.path("way");
    ASSERT_EQ(symlink(folder_.path("from").c_str(), other_way.c_str()), 0);
    Step step = moved();
    step.inode = inode(source_);
    for (const bool has_another_name : {false, true}) {
        if (has_another_name) ASSERT_EQ(link(source_.c_str(), target_.c_str()), 0);
        for (const std::string& path : {source_, folder_.path("from//file"), other_way + "/file"}) {
            step.target = path;
            expect(step, Need::Nothing);
        }
    }
}

TEST_F(UndoPlans, AMoveWhoseCopyIsBackTrashesItsTarget) {
    write_both("bytes", "bytes");
    Step step = moved();
    step.inode = inode(target_);
    step.restored = inode(source_);
    expect(step, Need::TrashTarget);
    write(target_, "changed");
    expect_problem(step, "\"file\" was changed since");
}

TEST_F(UndoPlans, AMoveWhoseCopyAndTargetAreOthersIsNotUndone) {
    write_both("bytes", "bytes");
    Step step = moved();
    step.inode = 1;
    step.restored = 2;
    expect_problem(step, "\"file\" is another file now");
}

TEST_F(UndoPlans, AFolderThatSeemsToHaveTwoNamesKeepsBoth) {
    ASSERT_EQ(mkdir(source_.c_str(), 0700), 0);
    Step step = moved();
    step.inode = inode(source_);
    step.target = source_;
    expect(step, Need::Nothing);
}

TEST_F(UndoPlans, AMoveByACopyThatIsBackTrashesItsTarget) {
    write_both("bytes", "bytes");
    Step step = moved();
    step.original = 1;
    step.inode = inode(target_);
    step.restored = inode(source_);
    expect(step, Need::TrashTarget);
    write(target_, "changed");
    expect_problem(step, "\"file\" was changed since");
    step.inode = 2;
    expect(step, Need::Nothing);
}

TEST_F(UndoPlans, AMoveByACopyWhoseTargetHasGoneNeedsItsOriginal) {
    write(source_, "bytes");
    Step step = moved();
    step.original = inode(source_);
    expect(step, Need::Nothing);
    step.original = 1;
    expect_problem(step, "\"file\" is no longer there");
}

TEST_F(UndoPlans, AMoveByACopyWhoseTargetIsAnotherIsNotUndone) {
    write_both("bytes", "bytes");
    Step step = moved();
    step.original = inode(source_);
    step.inode = 1;
    expect_problem(step, "\"file\" is another file now");
}

TEST_F(UndoPlans, AnOriginalThatIsWholeLetsTheCopyGo) {
    write_both("bytes", "bytes");
    Step step = moved();
    step.original = inode(source_);
    step.inode = inode(target_);
    expect(step, Need::TrashTarget);
    write(source_, "changed");
    expect_problem(step, "\"file\" was changed since");
}

TEST_F(UndoPlans, AnUnconfirmedCopyWhoseNameAnotherFileHasIsLeftAlone) {
    write(target_, "another");
    Step step = moved();
    step.kind = Step::Copied;
    step.inode = step.copy.inode = 1;
    expect(step, Need::Nothing);
    step.is_confirmed = true;
    expect_problem(step, "the copy \"file\" was changed since");
}

TEST_F(UndoPlans, WhatIsBackFromTheTrashLosesItsNoteUnlessAnotherFileHasIt) {
    write(source_, "bytes");
    Step step = moved();
    step.kind = Step::Trashed;
    step.inode = inode(source_);
    step.trashed = {target_, target_ + ".trashinfo"};
    expect(step, Need::ForgetTrash);
    write(target_, "another");
    expect(step, Need::Nothing);
}

TEST_F(UndoPlans, AStepThatIsUndoneIsNotPlannedAgain) {
    Step step = moved();
    step.is_undone = true;
    step.inode = 1;
    expect(step, Need::Nothing);
}

TEST_F(UndoPlans, AFileComesBackIntoAFolderFarAboveWhichIsAlsoMoved) {
    const std::string moved_folder = folder_.folder("to/top/between");
    const std::string file = folder_.file("to/inside", "bytes");
    Step first, second;
    first.source = folder_.path("from/top/between/inside");
    first.target = file;
    first.inode = inode(file);
    second.source = folder_.path("from/top");
    second.target = folder_.path("to/top");
    second.inode = inode(second.target);
    for (const Plan& plan : plans_of({first, second})) {
        EXPECT_EQ(plan.problem, "");
        EXPECT_EQ(plan.need, Need::MoveBack);
    }
    // When the folder above goes away instead, there is no place for the file.
    second.source = folder_.path("from/other");
    second.target = folder_.folder("from/top");
    second.inode = inode(second.target);
    const std::vector<Plan> plans = plans_of({first, second});
    EXPECT_EQ(plans[0].problem, "the folder \"between\" is no longer there");
    EXPECT_EQ(plans[1].problem, "");
}
