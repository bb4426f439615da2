// A user for menus: steps that run in order while a menu tracks, each as soon as its condition
// holds.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

#include "menus/menu_run.h"
#include "support/steps.h"
#include "support/x_input.h"

class MenuScript {
  public:
    using Condition = test::Steps::Condition;
    using Action = test::Steps::Action;

    // Conditions are checked only while a menu is open.
    void when(const std::string& what, Condition condition, Action action);
    // Opens `menu` at a point of the server and returns when it has closed. The test fails when a
    // condition never held.
    void run(NSMenu* menu, int x, int y);

    test::XInput input;

  private:
    test::Steps steps_;
};

// About the menu on the screen.
bool level_is_shown(size_t index);
size_t shown_levels();
MenuLevel& shown_level(size_t index);
// The middle of a row, by title; {-1, -1} when no such row is in that level.
MenuPoint row_point(size_t level, NSString* title);
std::string highlighted_title(size_t level);
