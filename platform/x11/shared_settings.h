// The settings that the desktop's session shares with all programs on the display (XSETTINGS). Main
// thread.
#pragma once

#include <string>

// The text of a setting, such as "Net/IconThemeName"; empty without such a setting, where no
// program shares any, and without a display. Asked anew at each call: some trips to the X server.
std::string shared_setting(const std::string& name);
