// Appearance Manager: cursors of the desktop's theme. Any thread.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef UInt32 ThemeCursor;
enum {
    kThemeArrowCursor = 0,
    kThemeCopyArrowCursor = 1,
    kThemeAliasArrowCursor = 2,
    kThemeContextualMenuArrowCursor = 3
};

// Shows the cursor over the window under the pointer, even another program's. It lasts until the
// pointer moves, and at most half a second after the last call. Then the window takes the cursor of
// its surroundings; a cursor that its program had set comes back when the program sets it again.
// Answers paramErr for a cursor that is not listed above, and ioErr without a display.
OSStatus SetThemeCursor(ThemeCursor cursor);

#ifdef __cplusplus
}
#endif
