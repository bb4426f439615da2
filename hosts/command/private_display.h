// The command's own X server, for when there is no display.
#pragma once

#include <string>

// Whether the display that the environment names can be opened. If not, *problem is one line that
// begins with the cause; it is empty when the environment names no display.
bool display_answers(std::string* problem);

// Starts an Xvfb that only this process and its children may use, and sets DISPLAY and XAUTHORITY
// in the environment for it. The server ends with this process, however this process ends. False
// when it could not be started; then *problem says why.
bool start_private_display(std::string* problem);

// Whether the display is such a server, which ends with this process.
bool has_private_display();
