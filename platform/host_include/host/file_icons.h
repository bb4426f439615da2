// Which icons -[NSWorkspace iconForFile:] gives. Not a Mac interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// YES: -iconForFile: gives GNUstep's own icons, each shared by all callers, for a program that
// draws its own windows with them. NO, as at first: it gives the desktop's icons, each image to one
// caller.
void use_stock_file_icons(BOOL use);
