// A user for menus: steps that run one after the other while a menu tracks, each as soon as its
// condition holds.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

#include "appkit/menu_run.h"
#include "support/x_input.h"

class MenuScript {
  public:
    typedef std::function<bool()> Condition;
    typedef std::function<void()> Action;

    void when(const std::string& name, Condition condition, Action action);
    // Pops `menu` up at a point of the server and returns when it has closed. Returns the name of
    // the step whose condition never held, empty if all ran. What is left of a menu that a script
    // does not close is cancelled.
    std::string run(NSMenu* menu, int x, int y);
    // From the timer.
    void tick();

    test::XInput input;

  private:
    struct step_t {
        std::string name;
        Condition condition;
        Action action;
    };
    std::vector<step_t> steps_;
    size_t next_ = 0;
    int patience_ = 0;
    bool failed_ = false;
};

// About the menu on the screen.
bool level_is_shown(size_t index);
size_t shown_levels();
menu_level_t& shown_level(size_t index);
// The middle of a row, by title; {-1, -1} when no such row is in that level.
point_t row_point(size_t level, NSString* title);
std::string highlighted_title(size_t level);
