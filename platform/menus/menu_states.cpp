#include "menus/menu_states.h"

namespace {

const Transition transitions[] = {
    {state_closed, input_open_pressed, state_pressed, effect_none},
    {state_closed, input_open_free, state_sticky, effect_none},

    {state_pressed, input_release_pick, state_closing, effect_pick},
    {state_pressed, input_release_stay, state_sticky, effect_none},
    {state_pressed, input_release_outside, state_closing, effect_cancel},
    {state_pressed, input_press_inside, state_pressed, effect_arm},
    {state_pressed, input_press_outside, state_closing, effect_cancel},
    {state_pressed, input_enter_edge, state_scrolling, effect_start_scroll},
    {state_pressed, input_cancel, state_closing, effect_cancel},

    {state_sticky, input_press_inside, state_pressed, effect_arm},
    {state_sticky, input_press_outside, state_closing, effect_cancel},
    {state_sticky, input_enter_edge, state_scrolling, effect_start_scroll},
    {state_sticky, input_cancel, state_closing, effect_cancel},

    {state_scrolling, input_press_inside, state_scrolling, effect_arm},
    {state_scrolling, input_press_outside, state_closing, effect_cancel},
    {state_scrolling, input_leave_edge_pressed, state_pressed, effect_stop_scroll},
    {state_scrolling, input_leave_edge_free, state_sticky, effect_stop_scroll},
    {state_scrolling, input_cancel, state_closing, effect_cancel},

    {state_closing, input_closed, state_closed, effect_none},
};

}  // namespace

Transition transition(TrackingState state, TrackingInput input) {
    for (const Transition& known : transitions) {
        if (known.state == state && known.input == input) return known;
    }
    return {state, input, state, effect_none};
}
