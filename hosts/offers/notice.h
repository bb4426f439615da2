// The notice of the desktop after a file operation, with a button that undoes it. Main thread.
#pragma once

#include <string>

#include "file_steps/request.h"

// The first of the four arguments with which Delvio's program shows a notice; the others are the
// operation's name and the notice's two texts.
inline constexpr const char* notice_argument = "--show-notice";

// Starts a program that shows the notice and waits for its button, and returns at once. It shows
// nothing if the user wants no notices, if nothing can be undone, or if something failed: then a
// window tells the result.
void offer_undo(const operations::Request& request, const operations::Report& report);
