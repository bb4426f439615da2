#include "tree/dv_roots.h"

#include <stdio.h>
#include <string.h>

#include "support/dv_log.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

const char separator_entry[] = "-";
const char default_open_with_path[] = "/Applications";

// Puts the entry's text in the state's path buffer; false when the entry is to be skipped.
bool read_entry(delvio_t* state, CFTypeRef entry) {
    if (CFGetTypeID(entry) != CFStringGetTypeID()) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Error, user path is not a CFString?\n");
        return false;
    }
    char* path = state->path_buffer;
    if (!CFStringGetCString(static_cast<CFStringRef>(entry), path, DV_PATH_BUFFER_SIZE,
                            kCFStringEncodingUTF8)) {
        printf("Delvio: Warning, failed to add custom directory: String conversion failed!\n");
        return false;
    }
    if (dvEnableDebugOutput) dvdprintf("Delvio: Attempting to add user dir '%s'\n", path);
    if (*path) return true;
    printf(
        "Delvio: Failed to add a custom directory - CFStringGetCString returns true, but "
        "string length is 0.\n");
    return false;
}

void mark_separator(dv_tree_t* elem) {
    if (!elem) return;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Inserting separator\n");
    elem->origin |= DV_ORIGIN_SEPARATOR_AFTER;
}

dv_tree_t* build_root(const delvio_t* state, uint32_t scan_flags, uint32_t origin) {
    const char* path = state->path_buffer;
    const uint32_t flags = dv_get_flags(state) | scan_flags;
    dv_tree_t* root = dv_build_tree(path, 0, 1, flags, origin);
    if (!root) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: No tree built; creating single item instead.\n");
        }
        root = dv_build_single_elem(path, flags & ~DV_SCAN_FOLDERS_ONLY, origin);
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Root: %s - %s | %d\n", root ? root->display_name : " NONE ", path,
                  static_cast<int>(scan_flags & DV_SCAN_FOLDERS_ONLY));
    }
    return root;
}

// Writes the setting's path into the state's path buffer; false when the setting holds none.
bool read_open_with_path(delvio_t* state) {
    CFStringRef path = state->open_with_path;
    if (!path) return false;
    char* buffer = state->path_buffer;
    const CFStringEncoding fastest = CFStringGetFastestEncoding(path);
    // UTF-16 text contains zero bytes, so as a C string it would be a different path.
    const bool converted = fastest != kCFStringEncodingUnicode &&
                           CFStringGetCString(path, buffer, DV_PATH_BUFFER_SIZE, fastest);
    if (converted && *buffer) return true;
    return CFStringGetCString(path, buffer, DV_PATH_BUFFER_SIZE, kCFStringEncodingUTF8) && *buffer;
}

}  // namespace

void dv_add_user_directories(delvio_t* state, dv_tree_t** current, dv_tree_t** tail,
                             dv_tree_t** head, uint32_t scan_flags, uint32_t origin) {
    CFArrayRef folders = state->folders;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Adding user directories: %p\n", folders);
    if (!folders || CFGetTypeID(folders) != CFArrayGetTypeID()) return;
    const CFIndex count = CFArrayGetCount(folders);
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: There are %d paths to consider.\n", static_cast<int>(count));
    }
    for (CFIndex i = 0; i < count; i++) {
        CFTypeRef entry = CFArrayGetValueAtIndex(folders, i);
        if (dvEnableDebugOutput) dvdprintf("Delvio: Item %d: %p\n", static_cast<int>(i), entry);
        if (!read_entry(state, entry)) continue;
        if (strcmp(state->path_buffer, separator_entry) == 0) {
            mark_separator(*tail);
            continue;
        }
        *current = build_root(state, scan_flags, origin | DV_ORIGIN_USER_FOLDER);
        dv_update_ptrs(*current, tail, head);
    }
}

dv_tree_t* dv_build_open_with_tree(delvio_t* state) {
    const char* path = read_open_with_path(state) ? state->path_buffer : default_open_with_path;
    return dv_build_tree(path, 0, 1, dv_get_flags(state), DV_ORIGIN_APP_LIST);
}
