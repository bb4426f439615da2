// Drags of files to other programs, for a program that is about to exit. Not a Mac interface. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>

// Runs the run loop until the program that got the last drop has fetched the files, `limit` seconds
// at most.
void finish_file_drops(NSTimeInterval limit);
