// Where the pointer is, asked over the thread's connection for questions. Any thread.
#pragma once

// The pointer's place, in pixels from the upper left, and the buttons and keys that are held.
struct PointerPlace {
    int x = 0, y = 0;
    unsigned state = 0;      // buttons and modifiers, as XQueryPointer tells them
    int display_height = 0;  // 0 without a display
};
PointerPlace pointer_place();

// The state alone.
unsigned pointer_state();
