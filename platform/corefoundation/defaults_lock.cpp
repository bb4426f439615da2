#include "corefoundation/defaults_lock.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "corefoundation/lock_holders.h"

namespace {

// Programs hold the lock for a few milliseconds. A program that holds it longer than this does not
// go on.
const int longest_seconds = 5;
const int milliseconds_a_try = 10;
const int patience = 500;
// The holder of a lock is looked for only when it has not gone in this time.
const int usual_tries = 5;

std::string parent_of(const std::string& folder) { return folder + "/.lck"; }
std::string lock_in(const std::string& folder) {
    return parent_of(folder) + "/.GNUstepDefaults.lck";
}

bool stands(const std::string& lock, struct stat* status) {
    return lstat(lock.c_str(), status) == 0;
}

}  // namespace

DefaultsTurn::DefaultsTurn(const std::string& folder, int milliseconds)
    : parent_(open(parent_of(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const std::string lock = lock_in(folder);
    struct stat status;
    const int last = milliseconds / milliseconds_a_try;
    for (int attempt = 0; attempt <= last && !is_free_; attempt++) {
        if (attempt) usleep(milliseconds_a_try * 1000);
        if (is_anothers_turn()) continue;
        const bool looks_for_holder = attempt == usual_tries || attempt == last;
        is_free_ = !stands(lock, &status) || break_abandoned(lock, looks_for_holder);
    }
}

DefaultsTurn::~DefaultsTurn() {
    if (parent_ >= 0) close(parent_);
}

// Where the kernel does not lock folders, as on some disks of a network, nobody has the turn.
bool DefaultsTurn::is_anothers_turn() {
    if (has_turn_ || parent_ < 0) return false;
    has_turn_ = flock(parent_, LOCK_EX | LOCK_NB) == 0;
    return !has_turn_ && errno == EWOULDBLOCK;
}

bool DefaultsTurn::break_abandoned(const std::string& lock, bool looks_for_holder) const {
    struct stat before, now;
    if (!stands(lock, &before)) return true;
    const bool is_old = time(nullptr) - before.st_mtime > longest_seconds;
    const bool is_dead = has_turn_ && looks_for_holder && before.st_uid == geteuid() &&
                         !may_be_held_by_another(before.st_mtim);
    if (!is_old && !is_dead) return false;
    if (stands(lock, &now) && now.st_ino == before.st_ino) rmdir(lock.c_str());
    return !stands(lock, &now);
}

DefaultsLock::DefaultsLock(const std::string& folder)
    : turn_((mkdir(parent_of(folder).c_str(), 0755), folder), patience), path_(lock_in(folder)) {
    // A program without Delvio may have taken the lock just now.
    for (int attempt = 0; attempt < patience / milliseconds_a_try; attempt++) {
        if (!turn_.is_free()) return;
        held_ = mkdir(path_.c_str(), 0777) == 0;
        if (held_ || errno != EEXIST) return;
        usleep(milliseconds_a_try * 1000);
    }
}

DefaultsLock::~DefaultsLock() {
    if (held_) rmdir(path_.c_str());
}
