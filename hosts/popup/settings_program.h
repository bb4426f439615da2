// The settings window as a program of its own.
#pragma once

#include <string>

// Starts it and returns at once: an empty string, or one line that says why it failed.
std::string open_settings();
