#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef application, Boolean* valid);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
Boolean CFPreferencesAppSynchronize(CFStringRef application);
}
