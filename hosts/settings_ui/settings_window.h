// The window with all settings. Main thread.
#pragma once

// Shows the window until the user closes it, and returns the exit status of `delvio settings`.
int run_settings_window();
