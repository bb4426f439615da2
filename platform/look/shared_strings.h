// A menu's items have texts in common again and again: a file's items their title, its icons the
// file's name, all of a level their folder. Main thread.
#pragma once

#include <Foundation/Foundation.h>

// An immutable string of these characters: one of the last few that were asked for, if it can be.
// The caller retains it.
NSString* shared_string(const unichar* characters, NSUInteger length);
// The same for an equal string; nil for nil.
NSString* shared_string(NSString* string);
