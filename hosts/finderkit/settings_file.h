// The file that holds the user's settings. Main thread.
#pragma once

#include <string>

// "the settings in FILE cannot be read" when they cannot; else empty, also when there are none.
std::string SettingsProblem();
