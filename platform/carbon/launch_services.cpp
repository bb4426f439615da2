#include <Carbon/LaunchServices.h>

#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "carbon/entries_of_files.h"
#include "carbon/file_references.h"
#include "corefoundation/name_string.h"
#include "desktop/bundle_names.h"
#include "desktop/glib_owners.h"
#include "desktop/installed_applications.h"

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

// What is at the end of a symbolic link; of anything else, it itself. 0 where there is nothing.
mode_t mode_at_end(const File& file) {
    struct stat status;
    if (!S_ISLNK(file.mode)) return file.mode;
    return stat(file.path.c_str(), &status) == 0 ? status.st_mode : 0;
}

bool is_named_as_entry(const File& file) {
    return std::string_view(file.name(), file.name_length()).ends_with(".desktop");
}

bool is_application_entry(const File& file) {
    return is_named_as_entry(file) &&
           files::desktop_entry(file).standing != files::Standing::document;
}

const uint16_t has_bundle_flag = 0x2000;
const OSType application_type = 0x4150504C;  // 'APPL'

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
    const bool application = S_ISREG(file.mode) && (is_application_entry(file) ||
                                                    files::is_running_application(file.path));
    return kLSItemInfoIsPlainFile | (application ? kLSItemInfoIsApplication : 0);
}

// Whether the link leads to an application, through however many links.
bool leads_to_application(const File& file) {
    const files::TextOwner target(realpath(file.path.c_str(), nullptr));
    if (!target) return false;
    File end = {};
    end.path = target.get();
    const size_t slash = end.path.rfind('/');
    end.name_offset = end.path.size() > 1 ? static_cast<uint32_t>(slash) + 1 : 0;
    struct stat status;
    if (stat(target.get(), &status) != 0) return false;
    if (S_ISDIR(status.st_mode)) return is_one_of(extension_of(end), application_extensions);
    if (!S_ISREG(status.st_mode)) return false;
    if (files::is_running_application(end.path)) return true;
    return is_named_as_entry(end) &&
           files::desktop_entry_at(end.path).standing != files::Standing::document;
}

bool is_application(File& file) {
    return S_ISLNK(file.mode) ? leads_to_application(file)
                              : (kind_flags(file) & kLSItemInfoIsApplication) != 0;
}

// The name that an application gives itself; null for what is none, or is not believed.
CFStringRef copy_own_name(const File& file) {
    if (is_named_as_entry(file) && S_ISREG(mode_at_end(file))) {
        const files::DesktopEntry& entry = files::desktop_entry(file);
        const bool believed = entry.standing == files::Standing::application;
        if (!believed || entry.name.empty()) return nullptr;
        return CreateNameString(entry.name.data(), entry.name.size());
    }
    const bool bundle = is_one_of(extension_of(file), application_extensions) &&
                        S_ISDIR(mode_at_end(file)) && files::is_believed_bundle(file.path);
    return bundle ? files::copy_bundle_name(file.path.c_str()) : nullptr;
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
        if (is_application(*file)) info->filetype = application_type;
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

    *name = copy_own_name(*file);
    if (!*name) *name = CreateNameString(file->name(), file->name_length());
    if (!*name) return kLSUnknownErr;
    return noErr;
}
