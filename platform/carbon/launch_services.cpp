#include <Carbon/LaunchServices.h>

#include <string.h>
#include <strings.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "carbon/bundle_names.h"
#include "carbon/desktop_entries.h"
#include "carbon/file_references.h"
#include "corefoundation/name_string.h"

namespace {

using files::File;

// Folders that are shown as one document or program.
const char* const package_extensions[] = {
    "app",   "appex",    "band",        "bundle",    "component",    "gorm",  "inspector",
    "kext",  "mpkg",     "mdimporter",  "nib",       "palette",      "pkg",   "plugin",
    "prefs", "prefpane", "qlgenerator", "rtfd",      "saver",        "scptd", "service",
    "theme", "wdgt",     "workflow",    "xcodeproj", "sparsebundle", "xpc",
};
const char* const application_extensions[] = {"app"};

// What follows the last dot of a name; null without one, and for names that only begin with one.
const char* extension_of(const File& file) {
    const char* name = file.name();
    const char* dot = static_cast<const char*>(memrchr(name, '.', file.name_length()));
    return dot && dot != name && dot[1] ? dot + 1 : nullptr;
}

template <size_t count>
bool is_one_of(const char* extension, const char* const (&extensions)[count]) {
    return extension && std::any_of(std::begin(extensions), std::end(extensions),
                                    [=](auto known) { return !strcasecmp(known, extension); });
}

bool is_desktop_entry(const File& file) {
    const std::string_view name(file.name(), file.name_length());
    return S_ISREG(file.mode) && name.ends_with(".desktop");
}

const uint16_t has_bundle_flag = 0x2000;

LSItemInfoFlags folder_flags(File& file) {
    const char* extension = extension_of(file);
    if (is_one_of(extension, application_extensions)) {
        return kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication;
    }
    const bool package = is_one_of(extension, package_extensions) ||
                         (files::finder_information(file).flags() & has_bundle_flag);
    return kLSItemInfoIsContainer | (package ? kLSItemInfoIsPackage : 0);
}

LSItemInfoFlags kind_flags(File& file) {
    if (S_ISLNK(file.mode)) return kLSItemInfoIsSymlink | kLSItemInfoIsAliasFile;
    if (S_ISDIR(file.mode)) return folder_flags(file);
    const bool application = is_desktop_entry(file) && files::desktop_entry(file).is_application;
    return kLSItemInfoIsPlainFile | (application ? kLSItemInfoIsApplication : 0);
}

}  // namespace

OSStatus LSCopyItemInfoForRef(const FSRef* ref, LSRequestedInfo which, LSItemInfoRecord* info) {
    if (!info) return paramErr;
    OSErr error;
    File* file = files::file_for(ref, files::ITEM_INFO, &error);
    if (!file) return error;

    *info = {};
    if (which & kLSRequestTypeCreator) {
        const files::FinderInformation& finder = files::finder_information(*file);
        info->filetype = finder.type();
        info->creator = finder.creator();
    }
    if (which & (kLSRequestAllFlags | kLSRequestAppTypeFlags)) info->flags = kind_flags(*file);
    if ((which & kLSRequestAllFlags) && files::is_invisible(*file)) {
        info->flags |= kLSItemInfoIsInvisible;
    }
    return noErr;
}

OSStatus LSCopyDisplayNameForRef(const FSRef* ref, CFStringRef* name) {
    if (!name) return paramErr;
    *name = nullptr;
    OSErr error;
    const File* file = files::file_for(ref, files::DISPLAY_NAME, &error);
    if (!file) return error;

    if (is_desktop_entry(*file)) {
        const std::string& shown = files::desktop_entry(*file).name;
        if (!shown.empty()) *name = CreateNameString(shown.data(), shown.size());
    } else if (S_ISDIR(file->mode) && is_one_of(extension_of(*file), application_extensions)) {
        *name = files::copy_bundle_name(file->path.c_str());
    }
    if (!*name) *name = CreateNameString(file->name(), file->name_length());
    if (!*name) return kLSUnknownErr;
    return noErr;
}
