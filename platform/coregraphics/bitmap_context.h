// Bitmap contexts keep the caller's memory in step with what cairo has drawn.
#pragma once

#include "coregraphics/context.h"

// Writes what changed, in device space, to the caller's memory.
void store_bitmap(CGContextRef context, const extents_t& extents);
