// GNUstep's own connection to the X server, and its windows as the server knows them. Main thread.
#pragma once

#include <AppKit/AppKit.h>

struct _XDisplay;

_XDisplay* toolkit_display();
// The X server's window behind the toolkit's window.
unsigned long server_window(NSWindow* window);
// The height of the whole display, in pixels, as GNUstep counts from its lower edge.
int toolkit_display_height();
