// Core Foundation, as far as Delvio uses it.
//
// Every Core Foundation object here is the Foundation object of the same role: a CFStringRef is an
// NSString *, a CFArrayRef an NSArray *, so a cast converts one to the other at no cost. Ownership
// follows the Mac's rule: the caller releases, with CFRelease, what a function with Create or Copy
// in its name returns.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef UInt16 UniChar;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFURL* CFURLRef;  // an NSURL
typedef const struct __CFAllocator* CFAllocatorRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFMachPort* CFMachPortRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

#define kCFAllocatorDefault ((CFAllocatorRef)0)

CFTypeRef CFRetain(CFTypeRef object);
// Null is a fault on the Mac; here it is ignored.
void CFRelease(CFTypeRef object);
// The identifier of an object's class family: compare with CFStringGetTypeID() and its like.
CFTypeID CFGetTypeID(CFTypeRef object);

// Strings. Lengths and ranges are in UTF-16 units.
typedef UInt32 CFStringEncoding;
enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100
};

// CFSTR("text"): a constant string; never released.
CFStringRef __CFStringMakeConstantString(const char* ascii);
#define CFSTR(text) __CFStringMakeConstantString("" text "")

CFTypeID CFStringGetTypeID(void);
CFIndex CFStringGetLength(CFStringRef string);
// Null when the bytes are not valid in the encoding.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
// Writes the string and a terminating NUL. False when it does not fit `size` bytes or cannot be
// converted; `buffer` then holds nothing of use.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);
// The string's own units, valid as long as the string; null when the string does not store them.
const UniChar* CFStringGetCharactersPtr(CFStringRef string);
CFStringEncoding CFStringGetFastestEncoding(CFStringRef string);
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

// Arrays.
CFTypeID CFArrayGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

// Numbers.
typedef CFIndex CFNumberType;
enum { kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4, kCFNumberFloat64Type = 6 };
CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

// Preferences: the GNUstep defaults domain named by the application identifier, so that
// `defaults write IDENTIFIER KEY VALUE` and these calls see the same values. Only that domain is
// read, not the global one. Any thread.
//
// Re-reads the domain from disk when another program has changed it (an unchanged file costs one
// stat). Writes our own changes, merged into what is there; values that are there already are not
// written. False when the file cannot be read or written: our changes are then kept, and tried
// again at the next call.
Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);
// *valid, which may be null, is set when the key exists and holds a whole number. `defaults write`
// stores numbers as strings, so a string that is a decimal integer and nothing else counts as one
// ("12", "-3"; not "2x", " 2", ""). Any other value gives 0 and *valid false.
CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID, Boolean* valid);
// "RecentDocuments" in "IDENTIFIER.LSSharedFileList" is the desktop's list of recent documents
// (recently-used.xbel): a dictionary whose "CustomListItems" are dictionaries with "Bookmark" data
// of the ten files that the application opened last, newest first. Main thread only. IDENTIFIER is
// a bundle's identifier, or the name of a desktop entry without ".desktop".
CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
// A null value removes the key. A key whose value is forced is left alone.
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);
Boolean CFPreferencesAppValueIsForced(CFStringRef key, CFStringRef applicationID);

// Run loops.
CFRunLoopRef CFRunLoopGetCurrent(void);
// Timers and sources that this platform adds for the common modes also fire in `mode`.
void CFRunLoopAddCommonMode(CFRunLoopRef loop, CFStringRef mode);
extern const CFStringRef kCFRunLoopDefaultMode;
extern const CFStringRef kCFRunLoopCommonModes;

// A port here always holds an event tap (CoreGraphics/CGEvent.h). `order` is ignored. A source is
// added on the thread of its loop.
CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                 CFIndex order);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFStringRef mode);
// Ends the event tap; the port's sources report nothing any more.
void CFMachPortInvalidate(CFMachPortRef port);
Boolean CFMachPortIsValid(CFMachPortRef port);

#ifdef __cplusplus
}
#endif
