#include "finderkit/asked_settings.h"

#include <host/menu_tracking.h>
#include <host/name_order.h>
#include <CoreFoundation/CoreFoundation.h>

#include "finderkit/item_marks.h"
#include "finderkit/plug_in_items.h"
#include "finderkit/settings_file.h"

id stored_setting(const char* setting) {
    const void* stored =
        CFPreferencesCopyAppValue((CFStringRef) @(setting), (CFStringRef) @(settings_domain));
    return [static_cast<id>(const_cast<void*>(stored)) autorelease];
}

namespace {

BOOL closes_one_level() { return escape_closes_one_level(); }

}  // namespace

bool escape_closes_one_level() { return [stored_setting(escape_closes_setting) isEqual:@"level"]; }

bool sorts_by_language() {
    return CFPreferencesGetAppIntegerValue((CFStringRef) @(sort_by_language_setting),
                                           (CFStringRef) @(settings_domain), nullptr) != 0;
}

void answer_settings() {
    order_names_by_language(sorts_by_language);
    [NSMenu setEscapeQuestion:closes_one_level];
    [NSMenu setMarkQuestion:mark_of_item];
    [NSMenu setPathQuestion:path_of_item];
}
