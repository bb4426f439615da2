// Drags of files to other programs, as a program sees them that is about to end. Not a Mac
// interface. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Runs the run loop until who got the last drop has fetched it, `limit` seconds at most.
void FinishFileDrops(NSTimeInterval limit);
