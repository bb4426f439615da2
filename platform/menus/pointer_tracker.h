// The pointer of one popup: turns its moves, presses and releases into changes of the session, by
// the table in menu_states.h. Main thread.
#pragma once

#include "menus/menu_hover.h"
#include "menus/menu_levels.h"
#include "menus/menu_states.h"

class pointer_tracker_t {
  public:
    explicit pointer_tracker_t(menu_levels_t& levels) : levels_(levels), hover_(levels) {}
    pointer_tracker_t(const pointer_tracker_t&) = delete;
    pointer_tracker_t& operator=(const pointer_tracker_t&) = delete;

    // Begins the popup at the place of `event`, or at the pointer for nil.
    void begin(NSEvent* event);
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

    double due() const { return deadline_t::earlier(hover_.due(), scroll_.timer.due); }
    void run_timers();

    tracking_state_t state() const { return state_; }
    point_t place() const { return place_; }
    point_t origin() const { return origin_; }
    bool is_button_down() const { return button_down_; }

  private:
    // Scrolling by a strip at the edge of a level.
    struct scroll_t {
        deadline_t timer;
        int level = -1, direction = 0;
        double started = 0;
    };

    void input(tracking_input_t input);
    void apply(tracking_effect_t effect);
    tracking_input_t release_input() const;
    bool move(NSEvent* event);
    bool press(NSEvent* event);
    bool release(NSEvent* event);
    bool turn_wheel(NSEvent* event);
    void hover();
    void leave_edge();
    void scroll_on();
    int scroll_step(const menu_level_t& level) const;

    menu_levels_t& levels_;
    menu_hover_t hover_;
    scroll_t scroll_;
    tracking_state_t state_ = state_closed;
    point_t origin_ = {}, place_ = {};
    bool button_down_ = false, armed_ = false, moved_ = false;
    unsigned buttons_ = 0;  // whose release is ours: see pointer_t
    double opened_ = 0;
};
