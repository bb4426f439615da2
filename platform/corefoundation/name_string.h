// Strings for short use, for example a file's name on its way into a menu.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __OBJC__
#import <Foundation/Foundation.h>

// An immutable string whose text is stored in the object itself, as UTF-8 and, unless it is ASCII,
// as UTF-16 too. Making one takes one allocation and a copy; Foundation's own strings take several
// times as long.
@interface NameString : NSString {
  @private
    NSUInteger _length;
    NSUInteger _size;
    unichar* _units;  // in this object; null for ASCII
    char* _bytes;     // in this object
    BOOL _isPassing;  // has room for any name, and is used again
}
// The UTF-8 bytes with a NUL after the last, and their number without the NUL.
- (const char*)bytes;
- (NSUInteger)size;
- (BOOL)isASCII;
// The UTF-16 units; null for ASCII.
- (const unichar*)units;
@end

// Whether the string is a NameString. Costs one comparison.
bool is_name_string(NSString* string);
#endif

// Makes a string of these UTF-8 bytes; null when they are not UTF-8. The caller releases it.
CFStringRef create_name_string(const char* bytes, size_t length);

// The same for a string that is probably released before the next one is made: the next one reuses
// its memory.
CFStringRef create_passing_name_string(const char* bytes, size_t length);
