// The settings that the desktop's session shares with all programs on the display (XSETTINGS). Main
// thread.
#pragma once

#include <map>
#include <string>

// All settings that are texts or numbers, such as "Net/IconThemeName", by their names; numbers in
// decimal digits. Empty when no program shares settings, and without a display. Each call asks
// anew, which takes some trips to the X server.
std::map<std::string, std::string> shared_settings();
