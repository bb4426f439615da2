// Parts of a light start, each for the back end's classes when they have been loaded. Main thread.
#pragma once

// The input method is opened by the first key.
void put_off_input_method();
// Frames of windows are tried out only where a window manager may draw some.
void leave_out_frame_trials();
