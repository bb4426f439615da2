// The host's side of the preferences: values that hold for this process alone.
// Not a Mac interface: there, an administrator's profile forces values.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// From now on every read of `key` gives `value` (kept), whatever the domain on disk holds, and
// writes of it are ignored. A null value ends the forcing. Main thread.
void ForcePreference(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);

#ifdef __cplusplus
}
#endif
