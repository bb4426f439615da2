#include "finderkit/applications_folder.h"

#include <host/glib_owners.h>
#include <host/process.h>
#include <host/forced_preferences.h>
#include <host/offered_entries.h>

#include <glib.h>
#include <limits.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "finderkit/application_sources.h"
#include "finderkit/applications_watch.h"
#include "finderkit/link_folder.h"

namespace fs = std::filesystem;

namespace {

// A time limit is needed: editing an entry, or removing its program, changes no folder.
const time_t longest_trust = 60 * 60;
const size_t longest_name = 255;

std::string own_place() { return std::string(g_get_user_cache_dir()) + "/delvio"; }

std::string stamp_of(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "missing";
    return std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

// Whether a folder with this record is still up to date.
bool is_current(const LinkRecord& record, time_t made_at) {
    const time_t age = time(nullptr) - made_at;
    return age >= 0 && age <= longest_trust && record.origin == describe_application_sources() &&
           std::all_of(record.stamps.begin(), record.stamps.end(),
                       [](const auto& one) { return stamp_of(one.first) == one.second; });
}

// Letters that sort as the names do, because a menu sorts by file name. They are the same in each
// new folder, so that an open menu never finds another program under a name.
std::string sorting_letters(const std::string& name) {
    const files::TextOwner valid(g_utf8_make_valid(name.c_str(), -1));
    const files::TextOwner folded(g_utf8_casefold(valid.get(), -1));
    const files::TextOwner key(g_utf8_collate_key(folded.get(), -1));
    std::string letters;
    for (const char* byte = key.get(); *byte; byte++) {
        const auto value = static_cast<unsigned char>(*byte);
        letters += static_cast<char>('a' + value / 16);
        letters += static_cast<char>('a' + value % 16);
    }
    return letters;
}

void add_link(const std::string& name, const std::string& file, const std::string& target,
              LinkRecord* record) {
    if (file.size() + 1 >= longest_name) return;
    const std::string letters = sorting_letters(name).substr(0, longest_name - file.size() - 1);
    record->links[letters + "." + file] = target;
}

LinkRecord offered_applications() {
    LinkRecord record;
    record.origin = describe_application_sources();
    const ApplicationSources sources = find_application_sources();
    for (const std::string& folder : sources.folders) record.stamps[folder] = stamp_of(folder);
    std::set<std::string> names;
    std::string name;
    for (const auto& [file, path] : sources.entries) {
        if (!is_offered_entry(path, &name)) continue;
        add_link(name, file, path, &record);
        names.insert(name);
    }
    for (const auto& [file, path] : sources.bundles) {
        // Many bundles also have a desktop entry.
        if (!is_offered_bundle(path, &name) || !names.insert(name).second) continue;
        add_link(name, file, path, &record);
    }
    return record;
}

// The domain of the plug-in's preferences; null before a plug-in is loaded.
CFStringRef plug_in_domain;

// The setting open_with_path; empty when there is none.
std::string configured_folder() {
    if (!plug_in_domain) return {};
    CFPreferencesAppSynchronize(plug_in_domain);  // another program may have set it
    const CFPropertyListRef value =
        CFPreferencesCopyAppValue(CFSTR("open_with_path"), plug_in_domain);
    char path[PATH_MAX] = "";
    if (value && CFGetTypeID(value) == CFStringGetTypeID()) {
        CFStringGetCString(static_cast<CFStringRef>(value), path, sizeof path,
                           kCFStringEncodingUTF8);
    }
    if (value) CFRelease(value);
    return path;
}

}  // namespace

std::string applications_folder() { return own_place() + "/applications"; }

bool update_applications_folder() {
    try {
        LinkRecord record;
        time_t made_at = 0;
        const std::string path = applications_folder();
        if (read_link_folder(path, &record, &made_at) && is_current(record, made_at)) return true;
        std::error_code error;
        fs::create_directories(own_place(), error);
        return !error && make_link_folder(path, offered_applications());
    } catch (...) {
        return false;
    }
}

void offer_applications_folder(CFStringRef domain) {
    update_applications_folder();
    if (domain) CFRetain(domain);
    CFRelease(plug_in_domain);
    plug_in_domain = domain;
    LinkRecord record;
    time_t made_at = 0;
    if (!domain || !read_link_folder(applications_folder(), &record, &made_at)) return;
    const CFStringRef path =
        CFStringCreateWithCString(nullptr, applications_folder().c_str(), kCFStringEncodingUTF8);
    if (path) set_fallback_preference(CFSTR("open_with_path"), path, domain);
    CFRelease(path);
}

void prepare_applications() {
    if (!applications_are_watched()) update_applications_folder();
    const std::string folder = configured_folder();
    declare_applications_folder(folder.empty() ? nullptr : folder.c_str());
}
