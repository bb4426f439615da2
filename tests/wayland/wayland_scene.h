// A menu of the delvio command in a compositor's session: what the compositor shows, what the
// menu's windows are, and real input from outside. Places are pixels of the test's X server from
// the upper left unless they are said to be the session's.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "hosts/command_runner.h"
#include "support/temp_folder.h"
#include "support/x_input.h"
#include "wayland/compositor.h"
#include "wayland/native_window.h"
#include "support/waiting.h"

struct _XDisplay;

namespace test {

// A level of the menu, in the session's pixels.
struct Level {
    int x, y, width, height;
};

// Places the windows of the test's X server, which no window manager places, from left to right in
// the order of their making. False while there are fewer of this width.
bool place_side_by_side(size_t count, int width);

class WaylandScene : public testing::Test {
  protected:
    // Of the class that derives from this one; started once for a program.
    static std::unique_ptr<Compositor> compositor;
    static void TearDownTestSuite() { compositor.reset(); }

    void SetUp() override;
    void TearDown() override;

    // Puts the pointer somewhere before the menu comes.
    void rest_at(int x, int y);
    // Starts the command for a folder, and waits until the compositor shows its menu and the menu
    // has the keyboard.
    bool open_menu(const std::vector<std::string>& words);
    // Waits until X programs of the session see the keys that are pressed.
    bool keys_reach_session();
    bool is_running() const;
    // Waits for the end of the command.
    Outcome finish();

    // The menu's levels, from the outermost.
    std::vector<Level> levels() const;
    bool wait_for_levels(size_t count) const;
    // The place on the screen of a row's text; rows are counted in pixels from the level's top.
    void point_at(const Level& level, int x, int y);
    // Moves the pointer to a row of a level once the level stands still, and waits until the row is
    // highlighted. Levels count from 0.
    bool highlight(size_t level, int x, int y);
    // Whether the screen shows the menu's colour there, which nothing else has.
    bool shows_menu_at(const Level& level);
    // Of the session's pixels to the screen's; as set_scale() was told.
    void set_scale(double scale) { scale_ = scale; }

    TempFolder folder;
    XInput input;

  private:
    void tell_what_is_there();

    _XDisplay* session_ = nullptr;
    std::unique_ptr<RunningCommand> command_;
    double scale_ = 1;
};

}  // namespace test
