// Strings that menu items share. The items of a file have the same title, its icons have the same
// file name, and all items of a level have the same folder. Main thread.
#pragma once

#include <Foundation/Foundation.h>

// An immutable string of these characters. If one of the last few strings is equal, it is used
// again. The caller retains it.
NSString* shared_string(const unichar* characters, NSUInteger length);
// The same, for an equal string. Nil for nil.
NSString* shared_string(NSString* string);
// The same; the caller owns it.
NSString* copy_of_shared_string(NSString* string);
