// AppKit: GNUstep's, and the methods of the Mac's that it lacks.
#pragma once

#include_next <AppKit/AppKit.h>

#include <AppKit/AppKitAdditions.h>
