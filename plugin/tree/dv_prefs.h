// Reads the user's settings from the plug-in's preferences domain into its state record. Main
// thread.
#pragma once

#include <stdint.h>

#include <CoreFoundation/CoreFoundation.h>

struct delvio_t;

// The preferences domain: the plug-in's bundle identifier.
#define DV_PREFS_DOMAIN "org.delvio.Delvio"

// Reads every setting again, with its default and bounds, and applies the log level and the
// kind-group order. With `write_back`, writes the current values of the settings that are always
// kept in the domain. Null is ignored.
void dv_read_prefs(delvio_t* state, int write_back);

// Reads one integer: the stored value, or `fallback` when the key is missing or is not a number.
void dv_read_pref(CFStringRef domain, CFStringRef key, int32_t* out, int32_t fallback);

// Stores one integer; does not synchronise.
void dv_write_pref(CFStringRef domain, CFStringRef key, int32_t value);
