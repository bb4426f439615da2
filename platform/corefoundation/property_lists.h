// Reading property lists from bytes that may be anything.
#pragma once

#include <Foundation/Foundation.h>

// The dictionary in these bytes of any property list format, autoreleased; nil if there is none.
NSDictionary* read_dictionary(NSData* data);
