#include <Carbon/LaunchServices.h>

#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "carbon/entries_of_files.h"
#include "carbon/file_references.h"
#include "carbon/link_targets.h"
#include "corefoundation/name_string.h"
#include "corefoundation/silent_disks.h"
#include "desktop/bundle_names.h"
#include "desktop/installed_applications.h"

namespace {

using files::File;

// Folders that are shown as one document or program.
const std::string_view package_extensions[] = {
    "app",   "appex",    "band",        "bundle",    "component",    "gorm",  "inspector",
    "kext",  "mpkg",     "mdimporter",  "nib",       "palette",      "pkg",   "plugin",
    "prefs", "prefpane", "qlgenerator", "rtfd",      "saver",        "scptd", "service",
    "theme", "wdgt",     "workflow",    "xcodeproj", "sparsebundle", "xpc",
};
const std::string_view application_extensions[] = {"app"};

// The extension of a name: what follows the last dot, in small letters. It is empty without a dot,
// for names whose only dot is the first character, and when it is longer than all extensions that
// mean anything here.
class Extension {
  public:
    explicit Extension(const File& file) {
        const char* name = file.name();
        const char* end = name + file.name_length();
        const auto* dot = static_cast<const char*>(memrchr(name, '.', file.name_length()));
        if (!dot || dot == name || end - dot - 1 > static_cast<ptrdiff_t>(sizeof text_)) return;
        for (const char* at = dot + 1; at != end; at++) {
            text_[length_++] = static_cast<char>(*at >= 'A' && *at <= 'Z' ? *at + 'a' - 'A' : *at);
        }
    }

    template <size_t count>
    bool is_one_of(const std::string_view (&extensions)[count]) const {
        const std::string_view text(text_, length_);
        return length_ && std::find(std::begin(extensions), std::end(extensions), text) !=
                              std::end(extensions);
    }

  private:
    char text_[16];
    size_t length_ = 0;
};

// The mode of a symbolic link's target, or of the file itself when it is no link. 0 where there is
// nothing.
mode_t mode_at_end(const File& file) {
    struct stat status;
    if (!S_ISLNK(file.mode)) return file.mode;
    if (files::is_silent_target(file.path)) return 0;
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
    const Extension extension(file);
    if (extension.is_one_of(application_extensions)) {
        return kLSItemInfoIsContainer | kLSItemInfoIsPackage | kLSItemInfoIsApplication;
    }
    const bool package = extension.is_one_of(package_extensions) ||
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

// As many links as the kernel follows.
const int most_links = 40;

// Moves from a link to what it names. False when there is nothing.
bool follow_link(File* file) {
    file->path = files::link_target(*file);
    struct stat status;
    if (file->path.empty() || files::is_silent_entry(file->path) ||
        lstat(file->path.c_str(), &status) != 0)
        return false;
    file->name_offset =
        file->path.size() > 1 ? static_cast<uint32_t>(file->path.rfind('/')) + 1 : 0;
    file->mode = status.st_mode;
    file->generation = 0;
    return true;
}

// Whether the link leads to an application, through however many links.
bool leads_to_application(const File& file) {
    File end = {};
    end.path = file.path;
    end.name_offset = file.name_offset;
    end.mode = file.mode;
    end.generation = file.generation;
    end.seen_at = file.seen_at;
    for (int links = 0; S_ISLNK(end.mode); links++) {
        if (links == most_links || !follow_link(&end)) return false;
    }
    if (S_ISDIR(end.mode)) return Extension(end).is_one_of(application_extensions);
    if (!S_ISREG(end.mode)) return false;
    const bool entry = is_named_as_entry(end);
    if (!entry && !files::knows_running_applications()) return false;
    const std::string path = files::real_path(end.path);
    if (files::is_running_application(path)) return true;
    return entry && files::desktop_entry_at(path).standing != files::Standing::document;
}

bool is_application(const File& file, LSItemInfoFlags flags) {
    return S_ISLNK(file.mode) ? leads_to_application(file)
                              : (flags & kLSItemInfoIsApplication) != 0;
}

// The name that an application gives itself. Null when the file is no application, or is not
// believed.
CFStringRef copy_own_name(const File& file) {
    if (file.is_silent) return nullptr;
    if (is_named_as_entry(file) && S_ISREG(mode_at_end(file))) {
        const files::DesktopEntry& entry = files::desktop_entry(file);
        const bool believed = entry.standing == files::Standing::application;
        if (!believed || entry.name.empty()) return nullptr;
        return create_name_string(entry.name.data(), entry.name.size());
    }
    const bool bundle = !S_ISREG(file.mode) && Extension(file).is_one_of(application_extensions) &&
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
    const LSItemInfoFlags flags = kind_flags(*file);
    if (which & kLSRequestTypeCreator) {
        const files::FinderInformation& finder = files::finder_information(*file);
        info->filetype = finder.type();
        info->creator = finder.creator();
        if (is_application(*file, flags)) info->filetype = application_type;
    }
    if (which & (kLSRequestAllFlags | kLSRequestAppTypeFlags)) info->flags = flags;
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
    if (!*name) *name = create_passing_name_string(file->name(), file->name_length());
    if (!*name) return kLSUnknownErr;
    return noErr;
}
