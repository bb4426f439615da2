// The pointer in GWorkspace: the menu by press and hold, and files dragged out of menus.
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "desktop/drop_target.h"
#include "gworkspace/viewer_desk.h"
#include "hosts/command_runner.h"

using namespace test;

namespace {

constexpr char command_key[] = "Super_L";

class Pointer : public ViewerDesk {
  protected:
    static void set_preference(const char* key, const char* value) {
        const pid_t child = fork();
        if (child == 0) {
            execlp("defaults", "defaults", "write", "org.delvio.Delvio", key, value,
                   static_cast<char*>(nullptr));
            _exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
    }
    // A setting takes effect with the next menu.
    void read_preferences() {
        right_click(item("browser", path("first.txt")));
        close_menu();
    }
    // Presses with Command on a row of the deepest level and waits until the drag has begun.
    void drag(size_t level, const std::string& title) {
        move_to(row(level, title).area);
        const std::string question = "highlight " + std::to_string(level);
        EXPECT_TRUE(wait_until([&] { return manager().ask_lines(question) == Lines({title}); }));
        input().key_down(command_key);
        input().press(1);
        ASSERT_TRUE(wait_until([&] { return is_closed(); }));
        ASSERT_TRUE(wait_until([&] { return !input().pointer_is_free(); })) << "no drag";
        input().key_up(command_key);
    }
};

}  // namespace

// Each round has its own delay; the setting is switched off again afterwards.
class PressAndHold : public Pointer {
  protected:
    void prepare(const char* microseconds) {
        set_preference("control_free_enabled", "2");
        set_preference("control_free_delay_usec", microseconds);
        show("browser");
        read_preferences();
        move_to(item("browser", path("second.txt")));
        // The place's own, once the program has set it.
        // Which has seen the move when it answers the second time.
        EXPECT_TRUE(wait_until([&] {
            cursor_ = input().cursor();
            manager().ask("idle");
            manager().ask("idle");
            return cursor_ == input().cursor();
        }));
        input().press(1);
    }
    bool is_armed() { return input().cursor() != cursor_; }
    void TearDown() override {
        set_preference("control_free_enabled", "0");
        read_preferences();
        Pointer::TearDown();
    }

  private:
    unsigned long cursor_ = 0;
};

TEST_F(PressAndHold, OpensTheMenuWithThePlugInsItems) {
    prepare("200000");
    ASSERT_TRUE(wait_until([&] { return is_armed(); }));
    input().release(1);
    ASSERT_TRUE(wait_until([&] { return is_open(0); })) << "no menu";
    EXPECT_TRUE(contains(titles(0), "second.txt"));
    close_menu();
}

TEST_F(PressAndHold, AMoveByOnePixelCancels) {
    prepare("200000");
    ASSERT_TRUE(wait_until([&] { return is_armed(); }));
    const Area area = item("browser", path("second.txt"));
    input().move(area.x() + 1, area.y());
    EXPECT_TRUE(wait_until([&] { return !is_armed(); }));
    input().release(1);
    EXPECT_TRUE(wait_until([&] { return selection() == Lines({path("second.txt")}); }));
    EXPECT_TRUE(is_closed());
}

TEST_F(PressAndHold, AReleaseBeforeTheDelayIsAClick) {
    prepare("30000000");
    input().release(1);
    EXPECT_TRUE(wait_until([&] { return selection() == Lines({path("second.txt")}); }));
    EXPECT_FALSE(is_armed());
    EXPECT_TRUE(is_closed());
}

TEST_F(Pointer, AFileThreeLevelsDownIsDroppedOnAnotherProgram) {
    TempFolder own;
    DropTarget target(own.path("drops"), 1000, 600);
    show("browser");
    right_click(item("browser", path("alpha")));
    hover_along({"alpha", "one", "two"});
    drag(3, "deep.txt");
    ASSERT_TRUE(wait_until([&] { return target.has("ready"); }));
    input().move(1020, 620);
    ASSERT_TRUE(wait_until([&] { return target.has("over"); }));
    input().move(1050, 650);
    input().release(1);
    EXPECT_TRUE(wait_until([&] { return !target.drops().empty(); }));
    EXPECT_EQ(target.drops(), Lines({"file://" + path("alpha/one/two/deep.txt")}));
}

TEST_F(Pointer, AFileOfAnotherProgramsMenuIsDroppedOnGWorkspace) {
    TempFolder own;
    const std::string file = own.file("brought.txt", "b");
    show("icons");
    const Area place = ground("icons");
    RunningCommand command({"menu", "--at", "700,40", file});
    ASSERT_TRUE(wait_until([&] { return !input().pointer_is_free(); }));
    // Its first row is highlighted only when the pointer is on it.
    const unsigned long plain = input().pixel(706, 56);
    int turn = 0;
    EXPECT_TRUE(wait_until([&] {
        input().move(730 + turn++ % 2, 56);
        return input().pixel(706, 56) != plain;
    }));
    input().key_down("Super_L");
    input().press(1);
    ASSERT_TRUE(wait_until([&] { return input().pointer_is_free(); })) << "the menu closes";
    ASSERT_TRUE(wait_until([&] { return !input().pointer_is_free(); })) << "the drag begins";
    input().key_up("Super_L");
    EXPECT_TRUE(wait_until([&] {
        input().move(place.x() - turn++ % 2, place.y());
        return manager().ask("target icons") == "yes";
    })) << "GWorkspace does not take the drag";
    input().release(1);
    // The other program may still have the keyboard; a click gives it to the question.
    left_click(manager().settled_area("alert_ground"));
    answer("Copy one item from");
    EXPECT_TRUE(wait_until([&] { return std::filesystem::exists(path("brought.txt")); }));
    EXPECT_EQ(command.finish().status, 0);
}
