#include "corefoundation/silent_disks.h"

#include <string.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "corefoundation/folder_question.h"
#include "corefoundation/local_stat.h"
#include "corefoundation/patient_stat.h"

namespace files {

namespace {

using Clock = std::chrono::steady_clock;

// A menu that is about to open may wait this long, once, for each disk.
const double patience = 1;
// The start of a disk is a folder whatever it answers, so it is waited for less long.
const double patience_with_start = 0.2;
// How long a silence is remembered, and what is known of mounts; and an answer, which serves the
// other entries of a listing.
const std::chrono::milliseconds moment{1000}, moment_of_answer{200};

struct Heard {
    bool is_silent;
    Clock::time_point at;
};

// What was heard, by place. Few places are ever asked. No disk is asked with the lock held.
class AllHeard {
  public:
    bool note(const std::string& place, bool is_silent) {
        const std::lock_guard guard(lock_);
        if (heard_.size() > 100) heard_.clear();
        heard_[place] = {is_silent, Clock::now()};
        return is_silent;
    }

    std::optional<bool> lately(const std::string& place) const {
        const std::lock_guard guard(lock_);
        const auto known = heard_.find(place);
        if (known == heard_.end()) return {};
        const Heard& heard = known->second;
        const auto lasts = heard.is_silent ? moment : moment_of_answer;
        return Clock::now() - heard.at > lasts ? std::nullopt : std::optional(heard.is_silent);
    }

  private:
    mutable std::mutex lock_;
    std::map<std::string, Heard> heard_;
};

// Never destroyed: a thread may still ask while the process ends.
AllHeard& all_heard() {
    static auto& heard = *new AllHeard;
    return heard;
}

// Files that stop answering together. Behind a link only the path itself is known.
std::string place_of(const std::string& path) {
    const std::string mount = foreign_mount_of(path);
    return mount.empty() ? path : mount;
}

bool ask(const std::string& path, Look look, bool takes_last_answer) {
    const std::string place = place_of(path);
    const std::optional<bool> was_silent = all_heard().lately(place);
    if (was_silent && (*was_silent || takes_last_answer)) return *was_silent;
    struct stat status;
    const double seconds = place == path ? patience_with_start : patience;
    return all_heard().note(place, ask_patiently(path, seconds, &status, look) == Answer::silent);
}

std::string without_last_slashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

// What is known of the folder whose entries are asked about.
struct Folder {
    std::string path;  // with its slash
    Clock::time_point at;
    bool is_foreign = false;
    std::vector<std::string> mounts;  // names of entries where another disk begins

    bool is_of(const char* entry, size_t folder_length) const {
        return path.size() == folder_length && memcmp(path.data(), entry, folder_length) == 0 &&
               Clock::now() - at < moment;
    }
    void become(const std::string& folder) {
        struct stat status;
        path = folder;
        at = Clock::now();
        is_foreign = local_stat(without_last_slashes(folder), &status) == Local::unknown;
        mounts = is_foreign ? std::vector<std::string>() : foreign_mounts_in(folder);
    }
    bool may_be_silent(const char* name) const {
        return is_foreign || std::ranges::find(mounts, name) != mounts.end();
    }
};

}  // namespace

bool is_silent_entry(const char* path, size_t length) {
    thread_local Folder folder;
    const auto* const slash = static_cast<const char*>(memrchr(path, '/', length));
    if (path[0] != '/' || length < 2) return false;
    const size_t folder_length = static_cast<size_t>(slash - path) + 1;
    if (!folder.is_of(path, folder_length)) folder.become({path, folder_length});
    if (!folder.is_foreign && folder.mounts.empty()) return false;
    const std::string whole(path, length);
    return folder.may_be_silent(whole.c_str() + folder_length) && ask(whole, ::lstat, true);
}

bool is_silent_target(const std::string& path) {
    struct stat status;
    const std::string plain = without_last_slashes(path);
    return local_stat(plain, &status) == Local::unknown && ask(plain, ::stat, false);
}

bool is_silent_folder(const std::string& path) {
    const std::string plain = without_last_slashes(path), place = place_of(plain);
    if (FolderQuestion::has_answered_lately(plain)) return all_heard().note(place, false);
    if (all_heard().lately(place).value_or(false)) return true;
    const auto question = FolderQuestion::ask(plain);
    return question && all_heard().note(place, !question->is_answered_in_time(patience));
}

bool has_disks_within(const std::string& folder) { return !foreign_mounts_in(folder).empty(); }

}  // namespace files
