#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFMachPort* CFMachPortRef;

extern const CFStringRef kCFRunLoopCommonModes;

CFRunLoopRef CFRunLoopGetCurrent(void);
void CFRunLoopAddCommonMode(CFRunLoopRef loop, CFStringRef mode);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFStringRef mode);
CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                 CFIndex order);
}
