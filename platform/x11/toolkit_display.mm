#include "x11/toolkit_display.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

_XDisplay* toolkit_display() { return static_cast<_XDisplay*>([GSCurrentServer() serverDevice]); }

unsigned long server_window(NSWindow* window) {
    return reinterpret_cast<unsigned long>([GSCurrentServer() windowDevice:[window windowNumber]]);
}

int toolkit_display_height() {
    return DisplayHeight(toolkit_display(), DefaultScreen(toolkit_display()));
}
