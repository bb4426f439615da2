// How high windows stand.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t CGWindowLevel;
typedef int32_t CGWindowLevelKey;

enum {
    kCGBaseWindowLevelKey = 0,
    kCGMinimumWindowLevelKey = 1,
    kCGDesktopWindowLevelKey = 2,
    kCGBackstopMenuLevelKey = 3,
    kCGNormalWindowLevelKey = 4,
    kCGFloatingWindowLevelKey = 5,
    kCGTornOffMenuWindowLevelKey = 6,
    kCGDockWindowLevelKey = 7,
    kCGMainMenuWindowLevelKey = 8,
    kCGStatusWindowLevelKey = 9,
    kCGModalPanelWindowLevelKey = 10,
    kCGPopUpMenuWindowLevelKey = 11,
    kCGDraggingWindowLevelKey = 12,
    kCGScreenSaverWindowLevelKey = 13,
    kCGMaximumWindowLevelKey = 14
};

// GNUstep's number for the level, as -[NSWindow setLevel:] takes it here: for status windows 21,
// where the Mac has 25. An unknown key gives 0, the normal level. Any thread.
CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);

#ifdef __cplusplus
}
#endif
