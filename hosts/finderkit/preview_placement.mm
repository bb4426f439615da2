#include "finderkit/preview_placement.h"

#include <host/window_placement.h>
#include <CoreFoundation/CoreFoundation.h>

namespace {

BOOL is_wanted() {
    Boolean valid = false;
    const CFIndex value = CFPreferencesGetAppIntegerValue(
        (CFStringRef) @(preview_beside_menu_setting), CFSTR("org.delvio.Delvio"), &valid);
    return !valid || value != 0;
}

}  // namespace

void PlacePreviewsAsSet() { PlaceWindowsBesideMenus(is_wanted); }
