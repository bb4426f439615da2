// Apple Events written down as they arrive, for whoever wants to know what goes on. Main thread.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

// Each event that arrives from now on goes to the end of the file, or for "-" to standard error.
// False when the file cannot be written; then *problem says why, in one line.
bool TraceEvents(const std::string& file, std::string* problem);

// A line with the event's class, ID and target, then one for each parameter; what a list or record
// holds is indented below it. With its last newline.
//
//   aevt/odoc to "MACS"
//     ----: list of 1
//       fsrf "/home/me/notes.txt"
std::string DescribeEvent(const AppleEvent& event);
