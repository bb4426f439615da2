// The Apple Events that a Finder answers. Main thread.
#pragma once

#include <string>

// Installs the handlers. With DELVIO_TRACE in the environment each event that arrives is written
// down too: to the end of the file that it names, or for "-" to standard error. False when that
// file cannot be written; then *problem says why, in one line.
//
//   open documents ("aevt", "odoc")   opens each file as the workspace does
//   move, clone, create element, delete   see finderkit/file_operations.h
bool answer_finder_events(std::string* problem);

// Runs the run loop until every event sent so far has been handled. For a host that is about to
// exit.
void finish_finder_events();
