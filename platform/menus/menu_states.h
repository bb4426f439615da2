// The states of tracking a menu by pointer, as a table.
#pragma once

enum TrackingState {
    state_closed,
    state_pressed,    // a button is down: the one of the popup, or one pressed in the menu
    state_sticky,     // no button is down, the menu stays
    state_scrolling,  // the pointer rests on a strip that scrolls
    state_closing,    // it is over, but buttons may still be down
};

enum TrackingInput {
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

enum TrackingEffect {
    effect_none,
    effect_arm,     // the next release may pick
    effect_pick,    // the item under the pointer
    effect_cancel,  // close without a pick
    effect_start_scroll,
    effect_stop_scroll,
};

struct Transition {
    TrackingState state;
    TrackingInput input;
    TrackingState next;
    TrackingEffect effect;
};

// What an input does in a state. An input without a meaning in that state changes nothing.
Transition transition(TrackingState state, TrackingInput input);
