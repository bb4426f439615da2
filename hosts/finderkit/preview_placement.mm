#include "finderkit/preview_placement.h"

#include <host/window_placement.h>
#include <CoreFoundation/CoreFoundation.h>

#include "finderkit/settings_file.h"

namespace {

BOOL is_wanted() {
    Boolean valid = false;
    const CFIndex value = CFPreferencesGetAppIntegerValue(
        (CFStringRef) @(preview_beside_menu_setting), (CFStringRef) @(settings_domain), &valid);
    return !valid || value != 0;
}

}  // namespace

void place_previews_as_set() { place_windows_beside_menus(is_wanted); }
