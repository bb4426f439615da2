#pragma once

#include <CoreGraphics/CGBase.h>

extern "C" {

typedef int32_t CGWindowLevel;
typedef int32_t CGWindowLevelKey;
enum { kCGStatusWindowLevelKey = 9, kCGPopUpMenuWindowLevelKey = 11 };

CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);
}
