#include "finderkit/applications_folder.h"

#include <CoreFoundation/ForcedPreferences.h>

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "finderkit/application_sources.h"

namespace fs = std::filesystem;

namespace {

// An entry edited in place, or a program that has gone, changes no folder.
const time_t longest_trust = 60 * 60;

// Where the folder and its record stand.
fs::path own_place() { return fs::path(g_get_user_data_dir()) / "delvio"; }
fs::path folder_path() { return own_place() / "Applications"; }
fs::path record_path() { return own_place() / "Applications.state"; }

// A name that is not taken, on the file system of the folder.
fs::path fresh_path() {
    static unsigned serial;
    return own_place() / (".new-" + std::to_string(getpid()) + "-" + std::to_string(serial++));
}

std::string stamp_of(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "missing";
    return std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

// A line for where applications are sought, then one for each folder as it was: STAMP PATH.
using Record = std::map<std::string, std::string>;

bool is_current() {
    struct stat status;
    const fs::path path = record_path();
    if (stat(path.c_str(), &status) != 0) return false;
    const time_t age = time(nullptr) - status.st_mtim.tv_sec;
    if (age < 0 || age > longest_trust) return false;
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line) || line != DescribeApplicationSources()) return false;
    while (std::getline(file, line)) {
        const size_t blank = line.find(' ');
        if (blank == line.npos || stamp_of(line.substr(blank + 1)) != line.substr(0, blank)) {
            return false;
        }
    }
    return true;
}

bool replace_file(const fs::path& path, const std::string& content, const timespec* changed) {
    const fs::path fresh = fresh_path();
    std::ofstream file(fresh, std::ios::binary);
    file << content;
    file.close();
    std::error_code error;
    bool done = file.good();
    if (done && changed) {
        const timespec times[] = {*changed, *changed};
        done = utimensat(AT_FDCWD, fresh.c_str(), times, 0) == 0;
    }
    if (done) fs::rename(fresh, path, error);
    if (done && !error) return true;
    fs::remove(fresh, error);
    return false;
}

void write_record(const Record& stamps) {
    std::string content = DescribeApplicationSources() + "\n";
    for (const auto& [path, stamp] : stamps) {
        if (path.find('\n') == path.npos) content += stamp + " " + path + "\n";
    }
    replace_file(record_path(), content, nullptr);
}

std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

// The copy has the time of what it is a copy of.
bool keep_copy(const std::string& source, const fs::path& copy) {
    struct stat theirs, ours;
    if (stat(source.c_str(), &theirs) != 0) return false;
    if (lstat(copy.c_str(), &ours) == 0 && S_ISREG(ours.st_mode) &&
        ours.st_size == theirs.st_size && ours.st_mtim.tv_sec == theirs.st_mtim.tv_sec &&
        ours.st_mtim.tv_nsec == theirs.st_mtim.tv_nsec) {
        return true;
    }
    return replace_file(copy, content_of(source), &theirs.st_mtim);
}

using Links = std::map<std::string, std::string>;

Links links_to(const std::string& bundle) {
    Links links;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(bundle, error)) {
        links[entry.path().filename()] = entry.path();
    }
    return links;
}

Links links_in(const fs::path& folder) {
    Links links;
    std::error_code error;
    if (fs::is_symlink(folder, error)) return links;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        links[entry.path().filename()] = fs::read_symlink(entry.path(), error);
    }
    return links;
}

bool keep_links(const std::string& bundle, const fs::path& folder) {
    const Links links = links_to(bundle);
    if (links == links_in(folder)) return true;
    const fs::path fresh = fresh_path();
    std::error_code error;
    fs::create_directory(fresh, error);
    for (const auto& [name, target] : links) fs::create_symlink(target, fresh / name, error);
    fs::remove_all(folder, error);
    fs::rename(fresh, folder, error);
    if (!error) return true;
    fs::remove_all(fresh, error);
    return false;
}

// Whether it is of the kind that this program makes.
bool is_ours(const fs::directory_entry& entry) {
    const std::string name = entry.path().filename();
    if (entry.is_symlink()) return false;
    if (entry.is_regular_file()) return name.ends_with(".desktop");
    if (!entry.is_directory() || !name.ends_with(".app")) return false;
    const Links links = links_in(entry.path());
    return std::none_of(links.begin(), links.end(),
                        [](const auto& link) { return link.second.empty(); });
}

// What was offered once and is no more. Whatever else the user keeps there stays.
void remove_others(const std::set<std::string>& kept) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_path(), error)) {
        if (kept.contains(entry.path().filename()) || !is_ours(entry)) continue;
        fs::remove_all(entry.path(), error);
    }
}

bool rebuild() {
    std::error_code error;
    fs::create_directories(folder_path(), error);
    // A link is the user's, and so is what it leads to.
    if (error || fs::is_symlink(folder_path(), error)) return false;
    const ApplicationSources sources = FindApplicationSources();
    Record stamps;
    for (const std::string& folder : sources.folders) stamps[folder] = stamp_of(folder);

    std::set<std::string> kept, names;
    std::string name;
    bool complete = true;
    for (const auto& [file, path] : sources.entries) {
        if (!IsOfferedEntry(path, &name)) continue;
        complete = keep_copy(path, folder_path() / file) && complete;
        kept.insert(file);
        names.insert(name);
    }
    for (const auto& [file, path] : sources.bundles) {
        // Many bundles have an entry of the desktop too.
        if (!IsOfferedBundle(path, &name) || !names.insert(name).second) continue;
        complete = keep_links(path, folder_path() / file) && complete;
        kept.insert(file);
    }
    remove_others(kept);
    stamps[folder_path()] = stamp_of(folder_path());
    if (complete) write_record(stamps);
    return complete;
}

}  // namespace

std::string ApplicationsFolder() { return folder_path(); }

bool UpdateApplicationsFolder() {
    try {
        return is_current() || rebuild();
    } catch (...) {
        return false;
    }
}

void OfferApplicationsFolder(CFStringRef domain) {
    UpdateApplicationsFolder();
    std::error_code error;
    if (!domain || !fs::is_directory(ApplicationsFolder(), error)) return;
    const CFStringRef path =
        CFStringCreateWithCString(nullptr, ApplicationsFolder().c_str(), kCFStringEncodingUTF8);
    if (path) SetFallbackPreference(CFSTR("open_with_path"), path, domain);
    CFRelease(path);
}
