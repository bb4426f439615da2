// Strings made for one moment, for example a file's name on its way into a menu.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __OBJC__
#import <Foundation/Foundation.h>

// An immutable string of ASCII characters that stand in the object itself: one allocation and one
// copy, where Foundation's own strings take several times as long.
@interface NameString : NSString {
  @private
    NSUInteger _length;
}
// The characters, with a NUL after the last.
- (const char*)bytes;
@end
#endif

// The string of these UTF-8 bytes, null when they are not UTF-8. The caller releases it.
CFStringRef CreateNameString(const char* bytes, size_t length);
