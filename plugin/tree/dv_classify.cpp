// Classifies an element: kind, display name, label, visibility, alias target.
#include "tree/dv_scan.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <Carbon/Carbon.h>

namespace {

enum {
    LONGEST_DISPLAY_NAME = 32,  // UTF-16 units; longer ones lose their middle
    KEPT_AT_EACH_END = 16,
    TARGET_PATH_LIMIT = 10240,
};

const OSType application_type = 0x4150504C;  // 'APPL'

void classify_kind(const FSRef& ref, dv_tree_t* elem) {
    LSItemInfoRecord info = {};
    if (LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator | kLSRequestAllFlags, &info) != noErr) {
        return;
    }
    if (info.flags & kLSItemInfoIsContainer) {
        elem->is_container = 1;
        elem->kind = DV_KIND_FOLDER;
    }
    if (info.filetype == application_type || (info.flags & kLSItemInfoIsApplication)) {
        elem->kind = DV_KIND_APPLICATION;
    } else if (info.flags & kLSItemInfoIsPackage) {
        elem->kind = DV_KIND_PACKAGE;
    }
}

bool is_high_surrogate(UniChar unit) { return (unit & 0xFC00) == 0xD800; }
bool is_low_surrogate(UniChar unit) { return (unit & 0xFC00) == 0xDC00; }

// Writes the units as UTF-8 and returns the end. Half of a surrogate pair is left out.
char* append_utf8(char* out, const UniChar* units, size_t count) {
    for (size_t i = 0; i < count; i++) {
        uint32_t code = units[i];
        if (is_low_surrogate(units[i])) continue;
        if (is_high_surrogate(units[i])) {
            if (i + 1 == count || !is_low_surrogate(units[i + 1])) continue;
            code = 0x10000 + ((code - 0xD800) << 10) + (units[++i] - 0xDC00);
        }
        if (code < 0x80) {
            *out++ = static_cast<char>(code);
            continue;
        }
        const int tail_bytes = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        const uint8_t lead = tail_bytes == 1 ? 0xC0 : tail_bytes == 2 ? 0xE0 : 0xF0;
        *out++ = static_cast<char>(lead | (code >> (6 * tail_bytes)));
        for (int shift = 6 * (tail_bytes - 1); shift >= 0; shift -= 6) {
            *out++ = static_cast<char>(0x80 | ((code >> shift) & 0x3F));
        }
    }
    return out;
}

// Writes both ends of a long name with an ellipsis between them, into a buffer that held the whole
// name.
void shorten(CFStringRef name, CFIndex length, char* buffer) {
    static const UniChar ellipsis = 0x2026;
    UniChar units[KEPT_AT_EACH_END];
    CFStringGetCharacters(name, {0, KEPT_AT_EACH_END}, units);
    char* end = append_utf8(buffer, units, KEPT_AT_EACH_END);
    end = append_utf8(end, &ellipsis, 1);
    CFStringGetCharacters(name, {length - KEPT_AT_EACH_END, KEPT_AT_EACH_END}, units);
    *append_utf8(end, units, KEPT_AT_EACH_END) = 0;
}

void set_display_name(const FSRef& ref, dv_tree_t* elem) {
    CFStringRef name = nullptr;
    if (LSCopyDisplayNameForRef(&ref, &name) != noErr) return;
    const CFIndex length = CFStringGetLength(name);
    auto* buffer = static_cast<char*>(malloc(3 * length + 4));
    // At most three bytes per unit, and the terminator.
    if (buffer && CFStringGetCString(name, buffer, 3 * length + 1, kCFStringEncodingUTF8)) {
        if (elem->owns_display_name) free(elem->display_name);
        elem->display_name = buffer;
        elem->owns_display_name = 1;
        if (length > LONGEST_DISPLAY_NAME) shorten(name, length, buffer);
    } else {
        free(buffer);
    }
    CFRelease(name);
}

// Follows the alias at `ref`. False when the alias leads nowhere, or `ref` is not an alias.
bool resolve_alias(FSRef ref, dv_tree_t* elem) {
    Boolean target_is_folder = false;
    Boolean was_alias = false;
    if (FSResolveAliasFileWithMountFlags(&ref, false, &target_is_folder, &was_alias,
                                         kResolveAliasFileNoUI) != noErr) {
        return false;
    }
    LSItemInfoRecord info = {};
    if (LSCopyItemInfoForRef(&ref, kLSRequestTypeCreator, &info) == noErr &&
        info.filetype == application_type) {
        elem->kind = DV_KIND_APPLICATION;
    }
    if (!was_alias) return false;
    char target[TARGET_PATH_LIMIT + 2];
    if (FSRefMakePath(&ref, reinterpret_cast<UInt8*>(target), TARGET_PATH_LIMIT) != noErr) {
        return false;
    }
    if (elem->kind == DV_KIND_FILE && target_is_folder) {
        elem->kind = DV_KIND_FOLDER;
        elem->is_container = 1;
    }
    free(elem->resolved_path);
    elem->resolved_path = strdup(target);
    return true;
}

bool read_finder_flags(const FSRef& ref, uint16_t* finder_flags) {
    FSCatalogInfo info = {};
    const OSErr error =
        FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr);
    if (error != noErr) {
        printf("GetCatInfo returned %ld\n", static_cast<long>(error));
        return false;
    }
    FileInfo file_info;
    memcpy(&file_info, info.finderInfo, sizeof file_info);
    *finder_flags = file_info.finderFlags;
    return true;
}

}  // namespace

int dv_process_finder_info(const char* path, uint32_t flags, dv_tree_t* elem) {
    FSRef ref;
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &ref, nullptr) != noErr) {
        return DV_ELEM_DROP;
    }
    classify_kind(ref, elem);
    set_display_name(ref, elem);
    uint16_t finder_flags = 0;
    if (!read_finder_flags(ref, &finder_flags)) return DV_ELEM_KEEP;
    elem->label = (finder_flags & kColor) >> 1;
    if (finder_flags & kIsInvisible) {
        if (!(flags & DV_SCAN_INVISIBLE)) return DV_ELEM_DROP;
        elem->visible = 0;
    }
    if (!(finder_flags & kIsAlias) || !resolve_alias(ref, elem)) return DV_ELEM_KEEP;
    const bool wanted = elem->kind == DV_KIND_FOLDER || !(flags & DV_SCAN_FOLDERS_ONLY);
    return wanted ? DV_ELEM_RESOLVED : DV_ELEM_DROP;
}
