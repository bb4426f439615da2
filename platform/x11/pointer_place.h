// Where the pointer is, asked over the thread's connection for questions. Any thread.
#pragma once

// In pixels from the upper left, and what is held.
struct pointer_place_t {
    int x = 0, y = 0;
    unsigned state = 0;      // buttons and modifiers, as XQueryPointer tells them
    int display_height = 0;  // 0 without a display
};
pointer_place_t pointer_place();

// Its state alone.
unsigned pointer_state();
