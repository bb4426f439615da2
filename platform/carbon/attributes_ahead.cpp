#include "carbon/attributes_ahead.h"

#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <new>

namespace files {

namespace {

// From this many entries on, a thread pays off; from twice as many on, a second one does.
constexpr size_t entries_a_thread = 500;
// The threads read while one core sorts, so no more than two of them gain time.
constexpr size_t most_threads = 2;

// Makes the folder the current one of this thread alone.
bool enter(const std::string& folder) {
    if (unshare(CLONE_FS) != 0) return false;
    return chdir(folder.c_str()) == 0;
}

bool may_have_attributes(const dirent& entry) {
    return entry.d_type == DT_REG || entry.d_type == DT_DIR;
}

// Holds signals back from this thread: they are for the program's own threads.
class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

}  // namespace

void Attributes::add(const FinderInformation& information) {
    static constexpr FinderInformation nothing = {};
    if (memcmp(information.bytes, nothing.bytes, sizeof nothing.bytes) == 0) {
        return read_.push_back(0);
    }
    found_.push_back(information);
    read_.push_back(static_cast<int32_t>(found_.size()));
}

void Attributes::append(size_t begin, const Attributes& others) {
    read_.resize(begin, -1);
    const auto offset = static_cast<int32_t>(found_.size());
    read_.reserve(begin + others.read_.size());
    for (const int32_t place : others.read_) read_.push_back(place > 0 ? place + offset : place);
    found_.insert(found_.end(), others.found_.begin(), others.found_.end());
}

AttributesAhead::AttributesAhead(const char* folder, const dirent* const* entries, size_t count)
    : folder_(folder), parts_(std::min(count / entries_a_thread, most_threads)) {
    const SignalsHeld held;
    for (size_t i = 0; i < parts_.size(); i++) {
        Part& part = parts_[i];
        const size_t begin = count * i / parts_.size(), end = count * (i + 1) / parts_.size();
        part.begin = begin;
        try {
            part.attributes.reserve(end - begin);
            part.thread = std::thread(
                [this, &part, own = std::vector<const dirent*>(entries + begin, entries + end)] {
                    try {
                        read(&part, own);
                    } catch (const std::bad_alloc&) {
                        // The other entries are asked when their turn comes.
                    }
                });
        } catch (const std::exception&) {
            // Without a thread, or without memory, each entry is asked when its turn comes.
        }
    }
}

AttributesAhead::~AttributesAhead() {
    for (Part& part : parts_) {
        if (part.thread.joinable()) part.thread.join();
    }
}

void AttributesAhead::read(Part* part, const std::vector<const dirent*>& entries) const {
    if (!enter(folder_)) return;
    for (const dirent* entry : entries) {
        FinderInformation information;
        const bool is_asked = may_have_attributes(*entry);
        if (is_asked && read_finder_information(entry->d_name, &information)) {
            part->attributes.add(information);
        } else if (is_asked && errno == EOPNOTSUPP) {
            return;
        } else {
            part->attributes.add_unknown();
        }
    }
}

Attributes AttributesAhead::finish() {
    Attributes all;
    for (Part& part : parts_) {
        if (part.thread.joinable()) part.thread.join();
        all.append(part.begin, part.attributes);
    }
    parts_.clear();
    return all;
}

}  // namespace files
