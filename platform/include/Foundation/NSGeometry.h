// Rectangles and points: GNUstep's, and the conversions to Core Graphics' own.
#pragma once

#include_next <Foundation/NSGeometry.h>

// They are the same types here.
static inline NSRect NSRectToCGRect(NSRect rect) { return rect; }
static inline NSPoint NSPointToCGPoint(NSPoint point) { return point; }
