// The input method of the display: what makes one character of several keys. Not a Mac interface.
// Main thread.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// To be called before the application starts. The input method, whose tables take as long to read
// as a menu takes to show, is then opened when the first key is pressed.
void OpenInputMethodLate(void);

#ifdef __cplusplus
}
#endif
