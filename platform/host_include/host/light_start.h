// A start of the toolkit that leaves out what a menu does not need. Not a Mac interface. Main
// thread.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// To be called before the application starts. The input method, whose tables take as long to read
// as a menu takes to show, is then opened when the first key is pressed. Where no window manager
// runs, GNUstep does not try with fifteen windows, one for each style, what frame it would draw.
void StartLightly(void);

#ifdef __cplusplus
}
#endif
