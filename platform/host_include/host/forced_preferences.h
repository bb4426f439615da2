// The host's side of the preferences: values that hold for this process alone.
// Not a Mac interface: there, an administrator's profile forces values, and programs register
// defaults of their own.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// From now on every read of `key` gives `value` (kept), even if the domain on disk has another
// value, and writes of `key` are ignored. A null value ends the forcing. Main thread.
void force_preference(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);

// From now on reads of `key` give `value` (kept) as long as the domain has no value of its own. A
// null value ends this. Main thread.
void set_fallback_preference(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);

#ifdef __cplusplus
}
#endif
