// Preferences that come from the desktop instead of the user's defaults, shown where the Mac keeps
// such values.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// Gives a value for a key of a domain, retained; null when it has none.
using PreferencesSource = CFPropertyListRef (*)(CFStringRef key, CFStringRef domain);

// From now on `source` answers for keys that have no value in the user's defaults, in all domains
// whose names end in `suffix` (which is kept, not copied). Any thread; the source runs on the
// thread that asks.
void add_preferences_source(const char* suffix, PreferencesSource source);

// The value that the sources have for a key; retained.
CFPropertyListRef copy_value_from_sources(CFStringRef key, CFStringRef domain);
