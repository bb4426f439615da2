// What the user's desktop says about looks, read from the files and the server resources in which
// desktops keep it. Each answer is fresh; each costs a few small reads.
#pragma once

#include <string>

// Whether the desktop asks for dark windows.
bool desktop_prefers_dark();

// The family of the desktop's interface font; a font alias if the desktop names none.
std::string desktop_font_family();

// The desktop's scale, 1 to 4 in steps of a quarter, from the resource string of the X server
// (null: none).
double desktop_scale(const char* server_resources);
