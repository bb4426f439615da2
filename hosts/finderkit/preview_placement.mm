#include "finderkit/preview_placement.h"

#include <host/window_placement.h>
#include <CoreFoundation/CoreFoundation.h>

#include "finderkit/settings_file.h"

namespace {

bool value_of(const char* setting, bool usual) {
    Boolean valid = false;
    const CFIndex value = CFPreferencesGetAppIntegerValue((CFStringRef) @(setting),
                                                          (CFStringRef) @(settings_domain), &valid);
    return valid ? value != 0 : usual;
}

BOOL is_beside_wanted() { return value_of(preview_beside_menu_setting, true); }

BOOL are_details_wanted() { return value_of(preview_details_setting, false); }

}  // namespace

void place_previews_as_set() {
    place_windows_beside_menus(is_beside_wanted);
    describe_windows_beside_menus(are_details_wanted);
}
