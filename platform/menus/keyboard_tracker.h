// The keyboard of one popup: moves through rows and levels, picks, finds titles by their beginning,
// and knows which keys are held that choose between alternates. Main thread.
#pragma once

#include <string>

#include "menus/menu_levels.h"
#include "menus/pointer_tracker.h"

class KeyboardTracker {
  public:
    KeyboardTracker(MenuLevels& levels, PointerTracker& pointer)
        : levels_(levels), pointer_(pointer) {}
    KeyboardTracker(const KeyboardTracker&) = delete;
    KeyboardTracker& operator=(const KeyboardTracker&) = delete;

    // Events other than keys only tell which modifiers are held.
    void handle(NSEvent* event);
    // The pointer leads, until a key is pressed.
    void yield_to_pointer() {
        level_ = -1;
        escaped_ = false;
    }
    // Asks the server which modifiers are held, for when some of their events have gone elsewhere.
    void ask_modifiers();

  private:
    void follow_modifiers(NSEvent* event);
    void press(NSEvent* event);
    bool press_command(unichar character);
    size_t focus_level() const;
    void take_focus();
    void move_highlight(int step, bool wraps);
    void move_to(int row, int step, bool wraps);
    void enter_submenu();
    void leave_submenu();
    void escape();
    void highlight(NSMenuItem* item, MenuLevel& level);
    void choose();
    bool is_typing() const;
    void type(NSString* characters);
    bool find(const std::string& wanted, int from);

    MenuLevels& levels_;
    PointerTracker& pointer_;
    NSUInteger flags_ = 0;  // of the last event
    int level_ = -1;        // the level that keys have led to; -1 once the pointer has moved
    bool escaped_ = false;  // the last key was an Escape that closed one level
    std::string typed_;     // folded
    double typed_at_ = 0;
};
