#include "carbon/attributes_ahead.h"

#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace files {

namespace {

// From this many entries on, a thread of its own pays off.
const size_t large_folder = 500;

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

AttributesAhead::AttributesAhead(const char* folder, const dirent* const* entries, size_t count)
    : folder_(folder) {
    if (count < large_folder) return;
    const SignalsHeld held;
    try {
        thread_ = std::thread(
            [this, all = std::vector<const dirent*>(entries, entries + count)] { read(all); });
    } catch (const std::system_error&) {
        // Without a thread, each entry is asked when its turn comes.
    }
}

void AttributesAhead::read(const std::vector<const dirent*>& entries) {
    if (!enter(folder_)) return;
    for (const dirent* entry : entries) {
        FinderInformation information;
        if (!may_have_attributes(*entry)) {
            attributes_.add_unknown();
        } else if (read_finder_information(entry->d_name, &information)) {
            attributes_.add(information);
        } else if (errno == EOPNOTSUPP) {
            return;
        } else {
            attributes_.add_unknown();
        }
    }
}

Attributes AttributesAhead::finish() {
    if (thread_.joinable()) thread_.join();
    return std::move(attributes_);
}

}  // namespace files
