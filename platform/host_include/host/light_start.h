// A start of the toolkit that leaves out what a menu does not need. Not a Mac interface. Main
// thread.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Call this before the application starts. The first key then opens the input method, whose tables
// take as long to read as a menu takes to show. Where no window manager runs, GNUstep does not open
// fifteen windows, one for each style, to find out about frames.
void start_lightly(void);

#ifdef __cplusplus
}
#endif
