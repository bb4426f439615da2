// What the user's desktop says about looks: the one place that asks for it. Each call asks anew,
// which costs a few small reads and questions to the X server. No daemon is needed or started, and
// nothing waits for the session bus. Main thread.
//
// When several sources have an answer, the first one counts, as for GTK's programs: what the
// session shares on the display (XSETTINGS), the files of GTK 3 and 4 (settings.ini), KDE's file
// (kdeglobals), and the database of GNOME's kind of desktops.
#pragma once

#include <string>

// Whether the desktop asks for dark windows. $GTK_THEME alone decides where it is set; otherwise
// the theme's name does, or a setting that programs or the whole desktop are to be dark.
bool desktop_prefers_dark();

// The family of the desktop's interface font; a font alias if the desktop names none.
std::string desktop_font_family();

// The desktop's icon theme; empty if the desktop names none.
std::string desktop_icon_theme();

// The desktop's scale, 1 to 4 in steps of a quarter. `server_resources` is the resource string of
// the X server; null means none.
double desktop_scale(const char* server_resources);
