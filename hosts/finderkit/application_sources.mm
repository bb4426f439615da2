#include "finderkit/application_sources.h"

#include <Foundation/Foundation.h>

#include <dirent.h>
#include <glib.h>
#include <sys/stat.h>

#include <set>

namespace {

const int deepest_folder = 4;

std::vector<std::string> data_folders() {
    std::vector<std::string> folders = {g_get_user_data_dir()};
    for (auto folder = g_get_system_data_dirs(); *folder; folder++) folders.push_back(*folder);
    return folders;
}

std::vector<std::string> bundle_folders() {
    std::vector<std::string> folders;
    for (NSString* path in NSSearchPathForDirectoriesInDomains(NSAllApplicationsDirectory,
                                                               NSAllDomainsMask, YES)) {
        if (const char* bytes = [path UTF8String]) folders.push_back(bytes);
    }
    return folders;
}

std::vector<std::string> names_in(const std::string& path) {
    std::vector<std::string> names;
    DIR* folder = opendir(path.c_str());
    if (!folder) return names;
    while (const dirent* entry = readdir(folder)) {
        if (entry->d_name[0] != '.') names.push_back(entry->d_name);
    }
    closedir(folder);
    return names;
}

bool is_folder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

using Folders = std::set<std::pair<dev_t, ino_t>>;

// Whether the folder is new to the search; links may form a loop.
bool is_new(const std::string& path, Folders* seen) {
    struct stat status;
    return stat(path.c_str(), &status) != 0 || seen->emplace(status.st_dev, status.st_ino).second;
}

// An entry in a subfolder is named with the folder's name in front of its own.
void find_entries(const std::string& path, const std::string& prefix, int depth, Folders* seen,
                  ApplicationSources* sources) {
    if (!is_new(path, seen)) return;
    sources->folders.push_back(path);
    for (const std::string& name : names_in(path)) {
        const std::string inner = path + "/" + name;
        if (name.ends_with(".desktop")) {
            sources->entries.try_emplace(prefix + name, inner);
        } else if (depth < deepest_folder && is_folder(inner)) {
            find_entries(inner, prefix + name + "-", depth + 1, seen, sources);
        }
    }
}

void find_bundles(const std::string& path, ApplicationSources* sources) {
    sources->folders.push_back(path);
    for (const std::string& name : names_in(path)) {
        const std::string bundle = path + "/" + name;
        if (name.ends_with(".app") && is_folder(bundle)) {
            sources->bundles.try_emplace(name, bundle);
        }
    }
}

bool is_set(NSDictionary* information, NSString* key) {
    id value = [information objectForKey:key];
    return [value respondsToSelector:@selector(boolValue)] && [value boolValue];
}

bool is_in_background(NSDictionary* information) {
    for (NSString* key in @[ @"NSUIElement", @"LSUIElement", @"NSBGOnly", @"LSBackgroundOnly" ]) {
        if (is_set(information, key)) return true;
    }
    return false;
}

// GNUstep's servers and panels, such as the speech servers and the recycler, open no files.
bool takes_files(NSDictionary* information) {
    for (NSString* key in @[ @"NSTypes", @"CFBundleDocumentTypes" ]) {
        id types = [information objectForKey:key];
        if ([types isKindOfClass:[NSArray class]] && [types count] > 0) return true;
    }
    return false;
}

std::string name_of(NSDictionary* information, const std::string& path) {
    for (NSString* key in @[ @"CFBundleDisplayName", @"ApplicationName" ]) {
        id name = [information objectForKey:key];
        if ([name isKindOfClass:[NSString class]] && [name length]) return [name UTF8String] ?: "";
    }
    const std::string name = path.substr(path.rfind('/') + 1);
    return name.substr(0, name.size() - 4);
}

}  // namespace

std::string describe_application_sources() {
    const char* desktop = g_getenv("XDG_CURRENT_DESKTOP");
    std::string line = desktop ? desktop : "";
    // The language determines the names and their order.
    line += std::string(":") + g_get_language_names()[0];
    for (const std::string& folder : data_folders()) line += ":" + folder;
    for (const std::string& folder : bundle_folders()) line += ":" + folder;
    for (char& byte : line) {
        if (byte == '\n') byte = ' ';
    }
    return line;
}

ApplicationSources find_application_sources() {
    ApplicationSources sources;
    Folders seen;
    for (const std::string& folder : data_folders()) {
        find_entries(folder + "/applications", "", 0, &seen, &sources);
    }
    for (const std::string& folder : bundle_folders()) find_bundles(folder, &sources);
    return sources;
}

bool is_offered_bundle(const std::string& path, std::string* name) {
    @autoreleasepool {
        NSString* text = [NSString stringWithUTF8String:path.c_str()];
        @try {
            NSBundle* bundle = text ? [NSBundle bundleWithPath:text] : nil;
            NSDictionary* information = [bundle infoDictionary];
            if (![bundle executablePath] || is_in_background(information) ||
                !takes_files(information)) {
                return false;
            }
            *name = name_of(information, path);
            return true;
        } @catch (NSException*) {
            return false;
        }
    }
}
