// GNUstep's own connection to the X server, and its windows as the server knows them. Main thread.
#pragma once

#include <AppKit/AppKit.h>

struct _XDisplay;

_XDisplay* toolkit_display();
// The server's window of this one.
unsigned long server_window(NSWindow* window);
// The whole display's, in pixels: GNUstep counts from its lower edge.
int toolkit_display_height();
