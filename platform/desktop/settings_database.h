// The database in which GNOME's kind of desktops keep what the user has set (dconf's).
//
// It is read directly, one key at a time. GSettings would give the same answer for more: a module,
// two threads, a connection to the session bus, and a bus is started where there is none.
#pragma once

#include <string>

namespace files {

// The text that is set for a key, such as "/org/gnome/desktop/interface/color-scheme". Empty when
// none is set, and for a database that is damaged or larger than 4 MiB.
std::string text_in_settings_database(const std::string& file, const std::string& key);

}  // namespace files
