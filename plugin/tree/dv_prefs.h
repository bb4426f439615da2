// The user's settings, from the preferences domain of the plug-in into its state record. Main
// thread.
#pragma once

#include <stdint.h>

#include <CoreFoundation/CoreFoundation.h>

struct delvio_t;

// The preferences domain: the plug-in's bundle identifier.
#define DV_PREFS_DOMAIN "org.delvio.Delvio"

// Reads every setting afresh, with its default and bounds, and applies the log level and the
// kind-group order. With `write_back`, writes the values in effect for the settings that always
// stand in the domain. Null is ignored.
void dv_read_prefs(delvio_t* state, int write_back);

// One integer: the stored value, or `fallback` when the key is absent or holds no number.
void dv_read_pref(CFStringRef domain, CFStringRef key, int32_t* out, int32_t fallback);

// Stores one integer; does not synchronise.
void dv_write_pref(CFStringRef domain, CFStringRef key, int32_t value);
