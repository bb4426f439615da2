// Where the pointer is, asked over the thread's connection for questions. Any thread.
#pragma once

#include <optional>

// The pointer's place, in pixels from the upper left, and the buttons and keys that are held.
struct PointerPlace {
    int x = 0, y = 0;
    unsigned state = 0;      // buttons and modifiers, as XQueryPointer tells them
    int display_height = 0;  // 0 without a display
};
PointerPlace pointer_place();

// The state alone.
unsigned pointer_state();

// What a Wayland compositor tells: Xwayland knows the pointer only over windows of X programs.
struct ToldPointer {
    int x, y;
    unsigned buttons;  // that are held, as XQueryPointer tells them
};
// From now on this counts and not what the X server says; without a value the server counts again.
void tell_pointer(const std::optional<ToldPointer>& pointer);
// Nobody tells any more. The place that was told last stays until the server knows of a motion.
void end_telling_pointer();
// Puts in what was told, if anything, for what the server has said.
void correct_pointer(int* x, int* y, unsigned* state);
