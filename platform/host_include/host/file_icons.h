// Which icons -[NSWorkspace iconForFile:] gives. Not a Mac interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// While YES, GNUstep's own, shared with all who ask; for a program that draws its own windows with
// them. Else the desktop's, and every image is the caller's. NO at first.
void UseStockFileIcons(BOOL use);
