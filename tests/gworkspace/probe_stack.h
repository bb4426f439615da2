// What the main thread of the program is doing, for the message of a test that fails.
#pragma once

#include <string>

// The Objective-C methods that are being carried out, the innermost first, one a line. Functions
// have no names here: the toolkit's libraries come without their symbols. Main thread.
std::string methods_in_progress();
