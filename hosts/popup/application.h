// The application object of a command that has no windows but its menu. Main thread.
#pragma once

// Silences the toolkit's log (unless DELVIO_TOOLKIT_LOG is set), sets defaults for this process
// alone, and hides the command's arguments from the toolkit, which would read some of them as
// defaults. Called before any other use of Foundation.
void prepare_toolkit(char* program);

// Connects to the display that the environment names. The application has no Dock icon and no main
// menu, and starts no daemons.
void start_application();
