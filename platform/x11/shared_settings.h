// The settings that the desktop's session shares with all programs on the display (XSETTINGS). Main
// thread.
#pragma once

#include <string>

// The text of a setting, such as "Net/IconThemeName". Empty when there is no such setting, when no
// program shares settings, and without a display. Each call asks anew, which takes some trips to
// the X server.
std::string shared_setting(const std::string& name);
