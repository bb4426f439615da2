// The application object of a command that has no windows but its menu. Main thread.
#pragma once

// Silences the toolkit's own log (unless DELVIO_TOOLKIT_LOG is set), sets the defaults that hold
// for this process, and hides the command's arguments from the toolkit, which would read some of
// them as defaults. Sent before any other use of Foundation.
void PrepareToolkit(char* program);

// Connects to the display that the environment names: no Dock icon, no main menu, no daemons.
void StartApplication();
