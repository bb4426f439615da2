#include "operations/left_trash_info.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "file_steps/descriptor.h"
#include "file_steps/folder.h"
#include "file_steps/lone_process.h"
#include "operations/undo_journal.h"
#include "operations/undo_record.h"

namespace operations {

namespace {

constexpr off_t longest_entry = 16 * 1024;  // three paths and a number

struct Left {
    Trashed trashed;
    timespec noted = {};  // when the step was written down
    bool is_any = false;
};

// What the journal's end says.
Left read_end(int file) {
    Left left;
    struct stat what;
    if (fstat(file, &what) != 0) return left;
    std::string end(static_cast<size_t>(std::min(what.st_size, longest_entry)), '\0');
    const off_t start = what.st_size - static_cast<off_t>(end.size());
    if (pread(file, end.data(), end.size(), start) != static_cast<ssize_t>(end.size())) return left;
    left.is_any = ends_with_trashing(end, &left.trashed);
    left.noted = what.st_mtim;
    return left;
}

// The last step of the last operation, if that operation has ended and the step was a move to the
// trash. An undo waits for the lock, so it is held only while the journal is read.
Left left_in(const std::string& state_folder) {
    const std::string path = undo_journal_path(state_folder);
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file || flock(file.get(), LOCK_SH | LOCK_NB) != 0) return {};
    const Left left = read_end(file.get());
    unlock(file);
    return left;
}

bool is_later(const timespec& one, const timespec& other) {
    if (one.tv_sec != other.tv_sec) return one.tv_sec > other.tv_sec;
    return one.tv_nsec > other.tv_nsec;
}

void remove_if_alone(const Left& left) {
    struct stat file, info;
    if (lstat(left.trashed.file.c_str(), &file) == 0 || !means_missing(errno)) return;
    if (lstat(left.trashed.info.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return;
    // A later note belongs to another program, which has taken the name since and is about to use
    // it.
    if (!is_later(info.st_mtim, left.noted)) unlink(left.trashed.info.c_str());
}

}  // namespace

void begin_to_remove_left_trash_info(const std::string& state_folder) {
    const Left left = left_in(state_folder);
    if (left.is_any) run_alone([&] { remove_if_alone(left); });
}

void remove_left_trash_info(const std::string& state_folder) {
    const Left left = left_in(state_folder);
    if (left.is_any) remove_if_alone(left);
}

}  // namespace operations
