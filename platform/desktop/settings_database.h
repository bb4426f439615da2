// The database in which GNOME's kind of desktops keep what the user has set (dconf's).
//
// It is read directly, one key at a time. GSettings would give the same answer at a higher price: a
// module, two threads, a connection to the session bus, and a new bus where there is none.
#pragma once

#include <string>

namespace files {

// What is set for a key, such as "/org/gnome/desktop/interface/color-scheme": a text, a number in
// digits, or "true" or "false". Empty when nothing is set, when it is anything else, and when the
// database is damaged or larger than 4 MiB.
std::string text_in_settings_database(const std::string& file, const std::string& key);

}  // namespace files
