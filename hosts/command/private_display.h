// An X server of the command's own, for when there is no display.
#pragma once

#include <string>

// Whether the display that the environment names can be opened. When not, *problem says so in one
// line that begins with what is wrong; it is empty when the environment names none.
bool DisplayAnswers(std::string* problem);

// Starts an Xvfb that only this process and its children may use, and points the environment
// (DISPLAY, XAUTHORITY) at it. It ends with this process, however that ends.
// False when it could not be started; then *problem says why.
bool StartPrivateDisplay(std::string* problem);

// Whether the display is such a server, which goes with this process.
bool HasPrivateDisplay();
