// Foundation: GNUstep's, and the methods of the Mac's that it lacks.
#pragma once

#include_next <Foundation/Foundation.h>

#ifdef __OBJC__
#include <Foundation/FoundationAdditions.h>
#endif
