#include "finderkit/link_folder.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace {

const char record_name[] = ".record";
const char first_line[] = "links made by Delvio; changes are lost";
const off_t largest_record = 4 << 20;
// A younger temporary folder may still be in use by another process.
const time_t oldest_work = 60 * 60;

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return number_; }

  private:
    int number_;
};

int open_folder(const std::string& path) {
    return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

bool has_line_break(const std::string& text) { return text.find('\n') != text.npos; }

std::string text_of(const LinkRecord& record) {
    std::string text = std::string(first_line) + "\n" + record.origin + "\n";
    for (const auto& [path, stamp] : record.stamps) text += "stamp " + stamp + " " + path + "\n";
    for (const auto& [name, target] : record.links) {
        text += "link\n" + name + "\n" + target + "\n";
    }
    return text;
}

bool parse(const std::string& text, LinkRecord* record) {
    std::istringstream lines(text);
    std::string line;
    if (!std::getline(lines, line) || line != first_line) return false;
    if (!std::getline(lines, record->origin)) return false;
    while (std::getline(lines, line)) {
        if (line == "link") {
            std::string name, target;
            if (!std::getline(lines, name) || !std::getline(lines, target)) return false;
            // A name must be in the folder itself.
            if (name.find('/') != name.npos) return false;
            record->links[name] = target;
        } else if (line.starts_with("stamp ")) {
            const size_t blank = line.find(' ', 6);
            if (blank == line.npos) return false;
            record->stamps[line.substr(blank + 1)] = line.substr(6, blank - 6);
        }
    }
    return true;
}

// Reads the record of a folder that belongs to this user. False when there is none.
bool read_record(int folder, LinkRecord* record, time_t* made_at) {
    struct stat status;
    if (folder < 0 || fstat(folder, &status) != 0 || status.st_uid != geteuid()) return false;
    const Descriptor file(
        openat(folder, record_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file < 0 || fstat(file, &status) != 0) return false;
    if (!S_ISREG(status.st_mode) || status.st_uid != geteuid()) return false;
    if (status.st_size > largest_record) return false;
    std::string text(static_cast<size_t>(status.st_size), '\0');
    if (read(file, text.data(), text.size()) != status.st_size) return false;
    *record = {};
    *made_at = status.st_mtim.tv_sec;
    return parse(text, record);
}

bool is_ours(const std::string& path) {
    LinkRecord record;
    time_t made_at;
    return read_record(Descriptor(open_folder(path)), &record, &made_at);
}

std::string target_of(int folder, const std::string& name) {
    char text[PATH_MAX];
    const ssize_t length = readlinkat(folder, name.c_str(), text, sizeof text);
    return length > 0 ? std::string(text, static_cast<size_t>(length)) : std::string();
}

bool write_record(int folder, const LinkRecord& record) {
    const Descriptor file(
        openat(folder, record_name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    const std::string text = text_of(record);
    return file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// Writes the record first, so that a half-made folder still tells what is in it.
bool fill(const std::string& path, const LinkRecord& record) {
    const Descriptor folder(open_folder(path));
    if (folder < 0 || !write_record(folder, record)) return false;
    return std::all_of(record.links.begin(), record.links.end(), [&](const auto& link) {
        return symlinkat(link.second.c_str(), folder, link.first.c_str()) == 0;
    });
}

std::vector<std::string> names_in(int folder) {
    std::vector<std::string> names;
    const int again = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* list = again < 0 ? nullptr : fdopendir(again);
    if (!list) return names;
    while (const dirent* entry = readdir(list)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    closedir(list);
    return names;
}

// Removes an old folder of ours: deletes its links, and moves the files of others to the folder
// that replaces it. A folder without a record is removed only if it is empty.
void retire(const std::string& path, const std::string& successor) {
    const Descriptor folder(open_folder(path)), next(open_folder(successor));
    LinkRecord record;
    time_t made_at;
    if (read_record(folder, &record, &made_at)) {
        for (const auto& [name, target] : record.links) {
            if (target_of(folder, name) == target) unlinkat(folder, name.c_str(), 0);
        }
        for (const std::string& name : names_in(folder)) {
            if (name == record_name) continue;
            renameat2(folder, name.c_str(), next, name.c_str(), RENAME_NOREPLACE);
        }
        if (names_in(folder) == std::vector<std::string>{record_name}) {
            unlinkat(folder, record_name, 0);
        }
    }
    rmdir(path.c_str());
}

bool exchange(const std::string& one, const std::string& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

bool is_there(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

std::string fresh_folder(const std::string& path) {
    const size_t name = path.rfind('/') + 1;
    std::string fresh = path.substr(0, name) + "." + path.substr(name) + "-XXXXXX";
    return mkdtemp(fresh.data()) ? fresh : std::string();
}

// For file systems that cannot exchange two names.
bool exchange_in_steps(const std::string& fresh, const std::string& path) {
    const std::string aside = fresh_folder(path);
    if (aside.empty() || rename(path.c_str(), aside.c_str()) != 0) return false;
    if (rename(fresh.c_str(), path.c_str()) != 0) return false;
    return rename(aside.c_str(), fresh.c_str()) == 0;
}

// Puts `fresh` at `path`; the folder that was there, if any, is then at `fresh`. False when it
// failed.
bool publish(const std::string& fresh, const std::string& path) {
    // Renaming a folder replaces nothing but an empty folder.
    if (!is_there(path) && rename(fresh.c_str(), path.c_str()) == 0) return true;
    if (!is_ours(path)) return false;
    if (!exchange(fresh, path)) {
        const bool possible = errno != EINVAL && errno != ENOSYS;
        return !possible && exchange_in_steps(fresh, path);
    }
    if (is_ours(fresh)) return true;
    exchange(fresh, path);  // another program was faster
    return false;
}

// Removes the temporary folders of processes that were killed at work.
void remove_leftovers(const std::string& path) {
    const size_t name = path.rfind('/') + 1;
    const std::string place = path.substr(0, name), start = "." + path.substr(name) + "-";
    const Descriptor folder(open_folder(place));
    if (folder < 0) return;
    for (const std::string& one : names_in(folder)) {
        struct stat status;
        if (!one.starts_with(start) ||
            fstatat(folder, one.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        if (!S_ISDIR(status.st_mode) || time(nullptr) - status.st_mtim.tv_sec < oldest_work) {
            continue;
        }
        retire(place + one, path);
    }
}

LinkRecord without_line_breaks(const LinkRecord& record) {
    LinkRecord result = record;
    std::erase_if(result.stamps, [](const auto& one) { return has_line_break(one.first); });
    std::erase_if(result.links, [](const auto& one) {
        return has_line_break(one.first) || has_line_break(one.second);
    });
    return result;
}

}  // namespace

bool read_link_folder(const std::string& path, LinkRecord* record, time_t* made_at) {
    const Descriptor folder(open_folder(path));
    if (!read_record(folder, record, made_at)) return false;
    return std::all_of(record->links.begin(), record->links.end(), [&](const auto& link) {
        return target_of(folder, link.first) == link.second;
    });
}

bool make_link_folder(const std::string& path, const LinkRecord& record) {
    remove_leftovers(path);
    if (is_there(path) && !is_ours(path)) return false;
    const std::string fresh = fresh_folder(path);
    if (fresh.empty()) return false;
    const bool done = fill(fresh, without_line_breaks(record)) && publish(fresh, path);
    retire(fresh, path);
    return done;
}
