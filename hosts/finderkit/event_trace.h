// Writes down Apple Events as they arrive, for debugging. Main thread.
#pragma once

#include <Carbon/Carbon.h>

#include <string>

// Appends each event that arrives from now on to the file, or writes it to standard error for "-".
// False when the file cannot be written; then *problem says why, in one line.
bool trace_events(const std::string& file, std::string* problem);

// A line with the event's class, ID and target, then one line for each parameter; the items of a
// list or record are indented below it. Ends with a newline.
//
//   aevt/odoc to "MACS"
//     ----: list of 1
//       fsrf "/home/me/notes.txt"
std::string describe_event(const AppleEvent& event);
