// Reading property lists from bytes that may be anything.
#pragma once

#include <Foundation/Foundation.h>

// See is_bounded_list().
bool is_bounded_data(NSData* data);

// The dictionary in these bytes, in any property list format, autoreleased; nil when there is none
// or it goes beyond the limits.
NSDictionary* read_dictionary(NSData* data);
