#include "tree/dv_prefs.h"

#include <stddef.h>

#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"

namespace {

struct setting_t {
    CFStringRef key;
    size_t offset;  // of its field in delvio_t, 32 bits wide
    int32_t fallback;
    bool written_back;
};

enum { LEAST_COLLAPSE_THRESHOLD = 2 };

CFStringRef domain() { return CFSTR(DV_PREFS_DOMAIN); }

int32_t* field(delvio_t* state, const setting_t& setting) {
    return reinterpret_cast<int32_t*>(reinterpret_cast<char*>(state) + setting.offset);
}

// Every integer setting with a field, in the order of reading and writing.
#define KEPT(name, fallback) \
    { CFSTR(#name), offsetof(delvio_t, name), fallback, false }
#define WRITTEN_BACK(name, fallback) \
    { CFSTR(#name), offsetof(delvio_t, name), fallback, true }
const auto& settings() {
    static const setting_t table[] = {
        KEPT(finderInSeparateSubmenu, 0),
        KEPT(hideMoveCopyAlias, 0),
        KEPT(showLabels, 1),
        KEPT(showRecentItems, 1),
        KEPT(hoverPreviews, 1),
        KEPT(hoverPreviewsInterval, 1000),
        KEPT(runningAppsInOpenWithMenu, 1),
        KEPT(rootMenuCollapseThreshold, 10),
        WRITTEN_BACK(autoOpenWithMenu, 1),
        KEPT(delvio_is_on, 1),
        WRITTEN_BACK(sort_order, 0),
        WRITTEN_BACK(show_hidden_files, 0),
        WRITTEN_BACK(show_package_contents, 0),
        WRITTEN_BACK(use_icons, 1),
        WRITTEN_BACK(placement, 2),
        WRITTEN_BACK(font_size, 0),
        WRITTEN_BACK(disable_menu_fade, 0),
        WRITTEN_BACK(custom_folder_order, 1),
        WRITTEN_BACK(only_folders_in_main_menu, 0),
        KEPT(intra_sort_order, 0),
        WRITTEN_BACK(control_free_delay_usec, 500000),
        WRITTEN_BACK(control_free_enabled, 0),
        WRITTEN_BACK(use_generic_icons, 0),
        WRITTEN_BACK(preview_size, 256),
        KEPT(open_after_file_op, 0),
    };
    return table;
}
#undef KEPT
#undef WRITTEN_BACK

void apply_bounds(delvio_t* state) {
    if (state->rootMenuCollapseThreshold < LEAST_COLLAPSE_THRESHOLD) {
        state->rootMenuCollapseThreshold = 1;
    }
    if (state->intra_sort_order >= DV_SORT_ORDER_COUNT) state->intra_sort_order = 0;
    dv_set_sort_order(state->intra_sort_order);
}

void release(CFTypeRef object) {
    if (object) CFRelease(object);
}

void read_objects(delvio_t* state) {
    release(state->open_with_path);
    CFPropertyListRef path = CFPreferencesCopyAppValue(CFSTR("open_with_path"), domain());
    if (path && CFGetTypeID(path) != CFStringGetTypeID()) {
        CFRelease(path);
        path = nullptr;
    }
    state->open_with_path = static_cast<CFStringRef>(path);

    release(state->folders);
    CFPropertyListRef folders = CFPreferencesCopyAppValue(CFSTR("folders"), domain());
    state->folders = static_cast<CFArrayRef>(folders);
}

void write_settings(delvio_t* state) {
    for (const setting_t& setting : settings()) {
        if (setting.written_back) dv_write_pref(domain(), setting.key, *field(state, setting));
    }
    CFPreferencesAppSynchronize(domain());
}

}  // namespace

void dv_read_pref(CFStringRef domain, CFStringRef key, int32_t* out, int32_t fallback) {
    Boolean valid = false;
    const CFIndex value = CFPreferencesGetAppIntegerValue(key, domain, &valid);
    *out = valid ? static_cast<int32_t>(value) : fallback;
}

void dv_write_pref(CFStringRef domain, CFStringRef key, int32_t value) {
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
    CFPreferencesSetAppValue(key, number, domain);
    CFRelease(number);
}

void dv_read_prefs(delvio_t* state, int write_back) {
    if (!state) return;
    CFPreferencesAppSynchronize(domain());
    dv_read_pref(domain(), CFSTR("logLevel"), &dvEnableDebugOutput, 0);
    for (const setting_t& setting : settings()) {
        dv_read_pref(domain(), setting.key, field(state, setting), setting.fallback);
    }
    apply_bounds(state);
    read_objects(state);
    if (write_back) write_settings(state);
}
