// The states of tracking a menu by pointer, as a table.
#pragma once

enum tracking_state_t {
    state_closed,
    state_pressed,    // a button is down: the one of the popup, or one pressed in the menu
    state_sticky,     // no button is down, the menu stays
    state_scrolling,  // the pointer rests on a strip that scrolls
    state_closing,    // it is over, but buttons may still be down
};

enum tracking_input_t {
    input_open_pressed,  // popped up by a button that is still down
    input_open_free,
    input_press_inside,
    input_press_outside,
    input_release_pick,     // on an item to pick, after a press in the menu or a move
    input_release_stay,     // where a release ends nothing
    input_release_outside,  // after a press in the menu or a move
    input_enter_edge,
    input_leave_edge_pressed,
    input_leave_edge_free,
    input_cancel,  // a key, the program
    input_closed,
};

enum tracking_effect_t {
    effect_none,
    effect_arm,     // the next release may pick
    effect_pick,    // the item under the pointer
    effect_cancel,  // close without a pick
    effect_start_scroll,
    effect_stop_scroll,
};

struct transition_t {
    tracking_state_t state;
    tracking_input_t input;
    tracking_state_t next;
    tracking_effect_t effect;
};

// What an input does in a state. An input without a meaning in that state changes nothing.
transition_t transition(tracking_state_t state, tracking_input_t input);
