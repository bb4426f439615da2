// Records that no operation writes, but a damaged disk may hold.
#include "operations/undo_record.h"

#include <gtest/gtest.h>

using operations::read_undo_record;
using operations::Recorded;

namespace {

const std::string begun = operations::begun_entry("7");
const std::string moving = operations::moving_entry("/from/a", "/to/a", 7);
const std::string copying = operations::copying_entry("/from/a", "/to/a", {});

}  // namespace

TEST(UndoRecord, EntriesAboutAStepThatIsNotThereAreLeftOut) {
    for (const std::string& entry :
         {operations::not_done_entry(), operations::copied_entry(),
          operations::emptying_entry("/from/a", "/to/a", 7), operations::restoring_entry(0, 7),
          operations::undone_entry(0)}) {
        const Recorded recorded = read_undo_record(begun + entry);
        EXPECT_EQ(recorded.problem, "");
        EXPECT_EQ(recorded.steps.size(), 0u);
        EXPECT_EQ(recorded.length, begun.size() + entry.size());
    }
}

TEST(UndoRecord, OnlyTheCopyOfThatSourceBecomesAMove) {
    const std::string emptying = operations::emptying_entry("/from/a", "/to/a", 9);
    const Recorded moved = read_undo_record(begun + copying + emptying);
    ASSERT_EQ(moved.steps.size(), 1u);
    EXPECT_EQ(moved.steps[0].kind, operations::Step::Moved);
    EXPECT_EQ(moved.steps[0].original, 9u);
    const Recorded other =
        read_undo_record(begun + copying + operations::emptying_entry("/from/b", "/to/a", 9));
    ASSERT_EQ(other.steps.size(), 1u);
    EXPECT_EQ(other.steps[0].kind, operations::Step::Copied);
    const Recorded taken_back =
        read_undo_record(begun + copying + operations::not_done_entry() + emptying);
    EXPECT_EQ(taken_back.steps.size(), 0u);
}

TEST(UndoRecord, ARecordBeginsOnce) {
    for (const std::string& text : {moving, begun + moving + begun}) {
        const Recorded recorded = read_undo_record(text);
        EXPECT_EQ(recorded.steps.size(), 0u);
        EXPECT_EQ(recorded.problem, "the record of the last operation cannot be read");
    }
}
