#include "file_steps/temporaries.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/statvfs.h>
#include <time.h>

#include <algorithm>
#include <vector>

#include "file_steps/folder.h"
#include "file_steps/lone_process.h"
#include "file_steps/state_folder.h"

namespace operations {

namespace {

// A journal's name is the prefix without the dot. It holds the file system's number, a newline and
// the folder's path up to the end. The process that holds its lock is alive.
constexpr const char* journal_start = "delvio-";
constexpr size_t random_digits = 16;
constexpr int days_to_wait = 90;
constexpr size_t most_cleaners = 8;
constexpr const char* new_start = "new-";

std::string journals_in(const std::string& state_folder) { return state_folder + "/temporaries"; }

std::string random_name() {
    uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) return {};
    char text[random_digits + 1];
    snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(number));
    return std::string(journal_start) + text;
}

bool is_journal(const std::string& name) {
    const size_t start = strlen(journal_start);
    return name.size() == start + random_digits && name.compare(0, start, journal_start) == 0 &&
           name.find_first_not_of("0123456789abcdef", start) == std::string::npos;
}

// A journal whose process was killed before it renamed the journal; it made no files.
bool is_new(const std::string& name) {
    const size_t start = strlen(new_start);
    return name.compare(0, start, new_start) == 0 && is_journal(name.substr(start));
}

std::string file_system_of(int folder) {
    struct statvfs what;
    return fstatvfs(folder, &what) == 0 ? std::to_string(what.f_fsid) : "";
}

// A second folder serves when the home is full; the user may be moving files to make room there.
std::vector<std::string> possible_journals(const std::string& state_folder) {
    std::vector<std::string> folders = {journals_in(state_folder)};
    const char* run_time = getenv("XDG_RUNTIME_DIR");
    if (run_time && run_time[0] == '/') {
        folders.push_back(journals_in(std::string(run_time) + "/delvio"));
    }
    return folders;
}

std::string read_all(int file) {
    std::string text;
    char buffer[4096];
    ssize_t size;
    while ((size = read(file, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<size_t>(size));
    }
    return text;
}

bool remove_prefixed(int folder, const std::string& prefix) {
    std::vector<std::string> names;
    bool removed = names_in_folder(folder, &names);
    for (const std::string& name : names) {
        if (name.compare(0, prefix.size(), prefix) == 0) {
            removed &= remove_tree(folder, name.c_str());
        }
    }
    return removed;
}

bool is_old(int file) {
    struct stat what;
    return fstat(file, &what) == 0 && time(nullptr) - what.st_mtime > days_to_wait * 24 * 3600;
}

// Whether the journal is no longer needed.
bool clean_up(int file, const std::string& prefix) {
    const std::string text = read_all(file);
    const size_t newline = text.find('\n');
    // Without a complete journal no file was made.
    if (newline == std::string::npos || text.compare(newline + 1, 1, "/") != 0) return true;
    const Descriptor folder(open(text.c_str() + newline + 1, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return is_old(file);
    // Another volume may be mounted there now, and the right one may come back.
    if (file_system_of(folder.get()) != text.substr(0, newline)) return is_old(file);
    return remove_prefixed(folder.get(), prefix);
}

// Does nothing while a process holds the journal.
void clean_up_journal(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file || flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;
    const std::string name = name_in_path(path);
    if (is_new(name) || clean_up(file.get(), "." + name + "-")) unlink(path.c_str());
    unlock(file);
}

std::vector<std::string> all_journals(const std::string& state_folder) {
    std::vector<std::string> found;
    for (const std::string& journals : possible_journals(state_folder)) {
        const Descriptor folder(open(journals.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        std::vector<std::string> names;
        if (!folder || !names_in_folder(folder.get(), &names)) continue;
        for (const std::string& name : names) {
            if (is_journal(name) || is_new(name)) found.push_back(journals + "/" + name);
        }
    }
    return found;
}

}  // namespace

std::string default_state_folder() {
    const char* state = getenv("XDG_STATE_HOME");
    if (state && state[0] == '/') return std::string(state) + "/delvio";
    const char* home = getenv("HOME");
    return std::string(home ? home : "") + "/.local/state/delvio";
}

// The journal gets its name once it is locked and complete, so that nobody takes it for abandoned.
bool Temporaries::open_journal(const std::string& journals, const std::string& name,
                               const std::string& text) {
    if (!make_folders(journals)) return false;
    const std::string unnamed = journals + "/" + new_start + name;
    journal_ = journals + "/" + name;
    lock_ = Descriptor(open(unnamed.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!lock_) return false;
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 &&
        write_fully(lock_.get(), text.data(), text.size()) && fsync(lock_.get()) == 0 &&
        rename(unnamed.c_str(), journal_.c_str()) == 0) {
        return true;
    }
    const int error = errno;
    unlink(unnamed.c_str());
    errno = error;
    return false;
}

Temporaries::Temporaries(const std::string& state_folder, int folder) {
    const std::string name = random_name(), path = path_of_folder(folder);
    prefix_ = "." + name + "-";
    if (path.empty() || name.empty()) {
        problem_ = translated("cannot tell where the destination is: %s", {error_text(errno)});
        return;
    }
    int error = EIO;
    for (const std::string& journals : possible_journals(state_folder)) {
        if (open_journal(journals, name, file_system_of(folder) + "\n" + path)) return;
        error = errno;
    }
    problem_ = translated("cannot write %s: %s", {journals_in(state_folder), error_text(error)});
}

Temporaries::~Temporaries() {
    if (problem_.empty() && !leaves_) unlink(journal_.c_str());
    unlock(lock_);
}

void remove_left_temporaries(const std::string& state_folder) {
    for (const std::string& journal : all_journals(state_folder)) clean_up_journal(journal);
}

void begin_to_remove_left_temporaries(const std::string& state_folder) {
    const std::vector<std::string> journals = all_journals(state_folder);
    for (size_t first = 0; first < std::min(journals.size(), most_cleaners); first++) {
        run_alone([&] {
            for (size_t at = first; at < journals.size(); at += most_cleaners) {
                clean_up_journal(journals[at]);
            }
        });
    }
}

}  // namespace operations
