// Reading property lists from bytes that may be anything.
#pragma once

#include <Foundation/Foundation.h>

// See is_bounded_list().
bool is_bounded_data(NSData* data);

// The dictionary in these bytes of any property list format, autoreleased; nil if there is none, or
// if it goes beyond the limits.
NSDictionary* read_dictionary(NSData* data);
