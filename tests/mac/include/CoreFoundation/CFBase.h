#pragma once

#include <MacTypes.h>

extern "C" {

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef double CFTimeInterval;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFURL* CFURLRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

extern const CFAllocatorRef kCFAllocatorDefault;

CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);

CFTypeID CFArrayGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

typedef CFIndex CFNumberType;
enum { kCFNumberSInt32Type = 3 };
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
}
