// Preferences that are not the user's defaults but something of the desktop's, shown in the place
// where the Mac keeps the like.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// Gives a value for a key of a domain, retained; null when it has none.
using PreferencesSource = CFPropertyListRef (*)(CFStringRef key, CFStringRef domain);

// From now on `source` answers for what the user's defaults have no value of, in all domains whose
// names end in `suffix` (kept). Any thread; the source runs on the one that asks.
void add_preferences_source(const char* suffix, PreferencesSource source);

// What the sources have to say; retained.
CFPropertyListRef copy_value_from_sources(CFStringRef key, CFStringRef domain);
