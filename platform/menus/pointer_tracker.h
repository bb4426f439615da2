// The pointer of one popup: turns its moves, presses and releases into changes of the session, by
// the table in menu_states.h. Main thread.
#pragma once

#include "menus/menu_hover.h"
#include "menus/menu_levels.h"
#include "menus/menu_states.h"
#include "x11/screens.h"

class PointerTracker {
  public:
    explicit PointerTracker(MenuLevels& levels) : levels_(levels), hover_(levels) {}
    PointerTracker(const PointerTracker&) = delete;
    PointerTracker& operator=(const PointerTracker&) = delete;

    // Begins the popup at the place of `event`, or at the pointer for nil.
    void begin(NSEvent* event, const Pointer& pointer);
    // The menu is on the screen. Filling it may have taken long, and that is not the user's time.
    void note_shown();
    // True when the pointer has taken the lead from the keys. Events that are not of the pointer do
    // nothing.
    bool handle(NSEvent* event);
    // The keys lead: the pointer's place has no effect until the pointer moves.
    void yield_to_keys();
    void cancel() { input(input_cancel); }
    // The popup is over, and the buttons that closed the menu are up.
    void end() { input(input_closed); }
    // The pointer rests on this item from now on, as rows have moved below it.
    void rest_on(NSMenuItem* item) { hover_.rest_on(item); }

    double due() const { return Deadline::earlier(hover_.due(), scroll_.timer.due); }
    void run_timers();

    TrackingState state() const { return state_; }
    MenuPoint place() const { return place_; }
    MenuPoint origin() const { return origin_; }
    bool is_button_down() const { return button_down_; }

  private:
    // Scrolling by a strip at the edge of a level.
    struct Scroll {
        Deadline timer;
        int level = -1, direction = 0;
        double started = 0;
    };

    void input(TrackingInput input);
    void apply(TrackingEffect effect);
    TrackingInput release_input(NSEvent* event) const;
    bool is_held(NSEvent* release) const;
    bool move(NSEvent* event);
    bool press(NSEvent* event);
    bool release(NSEvent* event);
    bool turn_wheel(NSEvent* event);
    void hover();
    void leave_edge();
    void scroll_on();
    int scroll_step(const MenuLevel& level) const;

    MenuLevels& levels_;
    MenuHover hover_;
    Scroll scroll_;
    TrackingState state_ = state_closed;
    MenuPoint origin_ = {}, place_ = {};
    bool button_down_ = false, armed_ = false, moved_ = false;
    unsigned buttons_ = 0;  // whose release is ours: see Pointer
    double pressed_ = 0;    // when, by the event that opened the menu; 0 if it does not say
    double shown_ = 0;
};
