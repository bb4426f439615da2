#include <CoreGraphics/CGWindowLevel.h>

#include <stddef.h>

namespace {

// By key. GNUstep has its own numbers for the levels that it knows.
const CGWindowLevel levels[] = {
    INT32_MIN,      // base
    INT32_MIN + 1,  // minimum
    -1000,          // desktop
    -20,            // backstop menu
    0,              // normal
    3,              // floating
    3,              // torn-off menu
    21,             // Dock
    20,             // main menu
    21,             // status
    100,            // modal panel
    101,            // pop-up menu
    500,            // dragging
    1000,           // screen saver
    INT32_MAX - 1,  // maximum
};

}  // namespace

CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key) {
    const size_t count = sizeof levels / sizeof *levels;
    return key >= 0 && static_cast<size_t>(key) < count ? levels[key] : 0;
}
