#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingUnicode = 0x0100, kCFStringEncodingUTF8 = 0x08000100 };

#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))

CFTypeID CFStringGetTypeID(void);
CFIndex CFStringGetLength(CFStringRef string);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);
const UniChar* CFStringGetCharactersPtr(CFStringRef string);
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);
CFStringEncoding CFStringGetFastestEncoding(CFStringRef string);
}
