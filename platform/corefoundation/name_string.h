// Strings made for one moment, for example a file's name on its way into a menu.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __OBJC__
#import <Foundation/Foundation.h>

// An immutable string whose text stands in the object itself, as UTF-8 and, unless it is ASCII, as
// UTF-16 too: one allocation and a copy, where Foundation's own strings take several times as long.
@interface NameString : NSString {
  @private
    NSUInteger _length;
    NSUInteger _size;
    unichar* _units;  // in this object; null for ASCII
    char* _bytes;     // in this object
    BOOL _isPassing;  // has room for any name, and is used again
}
// The UTF-8 bytes, with a NUL after the last, and how many there are without it.
- (const char*)bytes;
- (NSUInteger)size;
- (BOOL)isASCII;
// The UTF-16 units; null for ASCII.
- (const unichar*)units;
@end

// Whether it is a NameString, at the cost of one comparison.
bool is_name_string(NSString* string);
#endif

// The string of these UTF-8 bytes, null when they are not UTF-8. The caller releases it.
CFStringRef create_name_string(const char* bytes, size_t length);

// The same, for a string that is most likely released before the next one is made: its memory is
// kept for that.
CFStringRef create_passing_name_string(const char* bytes, size_t length);
