// The file that holds the user's settings. Main thread.
#pragma once

#include <string>

// The domain of the user's settings, which is the plug-in's.
inline constexpr const char* settings_domain = "org.delvio.Delvio";

// "the settings in FILE cannot be read" when that is so; else empty, even when there is no file.
std::string settings_problem();

// The folder that the file is in.
std::string settings_folder();
