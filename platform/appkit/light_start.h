// Parts of a light start. Each is called once the back end's classes have been loaded. Main thread.
#pragma once

// Leaves the input method to be opened by the first key.
void put_off_input_method();
// Has GNUstep try out window frames only where a window manager may draw them.
void leave_out_frame_trials();
// From then on a window that ends takes its counter along, which the toolkit would leave behind.
void end_counters_with_windows();
