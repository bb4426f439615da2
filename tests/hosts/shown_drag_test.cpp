// A file dragged out of the command's own menu.
#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop/drop_target.h"
#include "hosts/command_runner.h"
#include "support/temp_folder.h"
#include "support/waiting.h"
#include "support/x_input.h"

using test::wait_for;

TEST(ShownDrag, TheCommandStaysUntilTheDropHasBeenFetched) {
    test::TempFolder folder;
    test::XInput input;
    const std::string file = folder.file("note.txt", "n");
    test::DropTarget target(folder.path("drops"), 900, 500);
    ASSERT_TRUE(wait_for([&] { return target.has("ready"); }));
    test::RunningCommand command({"menu", "--at", "200,150", file});
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    const unsigned long plain = input.pixel(320, 166);
    // Moves onto the first row, which is the file.
    ASSERT_TRUE(wait_for([&] {
        input.move(230 + rand() % 3, 166);
        return input.pixel(320, 166) != plain;
    }));
    input.key_down("Super_L");
    input.press(1);
    ASSERT_TRUE(wait_for([&] { return input.pointer_is_free(); })) << "the menu closes";
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free(); })) << "the drag begins";
    input.key_up("Super_L");
    input.move(920, 520);
    ASSERT_TRUE(wait_for([&] { return target.has("over"); }));
    input.move(950, 550);
    input.release(1);
    EXPECT_TRUE(wait_for([&] { return !target.drops().empty(); }));
    EXPECT_EQ(target.drops(), std::vector<std::string>{"file://" + file});
    EXPECT_EQ(command.finish().status, 0);
}

TEST(ShownDrag, APressLetGoAtOnceEndsTheCommand) {
    test::TempFolder folder;
    test::XInput input;
    test::RunningCommand command({"menu", "--at", "200,150", folder.file("note.txt", "n")});
    ASSERT_TRUE(wait_for([&] { return !input.pointer_is_free() && !input.keyboard_is_free(); }));
    const unsigned long plain = input.pixel(320, 166);
    ASSERT_TRUE(wait_for([&] {
        input.move(230 + rand() % 3, 166);
        return input.pixel(320, 166) != plain;
    }));
    input.key_down("Super_L");
    input.press(1);
    ASSERT_TRUE(wait_for([&] { return input.pointer_is_free(); })) << "the menu closes";
    input.release(1);
    input.key_up("Super_L");
    EXPECT_EQ(command.finish().status, 0);
}
