#include "operations/undo_journal.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

#include <random>

#include "file_steps/folder.h"

namespace operations {

namespace {

bool is_at(const std::string& path, int file) {
    struct stat there, here;
    return stat(path.c_str(), &there) == 0 && fstat(file, &here) == 0 &&
           there.st_ino == here.st_ino && there.st_dev == here.st_dev;
}

// Opens and locks the journal. Another operation that still writes its journal keeps it as a file
// without a name.
Descriptor take_journal(const std::string& path) {
    for (int tries = 0; tries < 10; tries++) {
        Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!file) return file;
        const bool locked = flock(file.get(), LOCK_EX | LOCK_NB) == 0;
        if (locked && is_at(path, file.get())) return file;
        if (!locked) unlink(path.c_str());
    }
    return Descriptor();
}

// A command that is just starting reads the end of the journal, and is waited for. An operation or
// another undo is not; a killed one may leave its lock for a moment to a process that it has
// forked.
bool lock_after_readers(int file) {
    constexpr int most_tries = 2000, most_refusals = 20;
    for (int tries = 0, refusals = 0; tries < most_tries && refusals < most_refusals; tries++) {
        if (flock(file, LOCK_EX | LOCK_NB) == 0) return true;
        if (flock(file, LOCK_SH | LOCK_NB) == 0) {
            flock(file, LOCK_UN);
        } else {
            refusals++;
        }
        usleep(5000);
    }
    return false;
}

std::string read_all(int file) {
    std::string text;
    char buffer[64 * 1024];
    ssize_t size;
    while ((size = read(file, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<size_t>(size));
    }
    return text;
}

std::string new_name() {
    std::random_device number;
    return std::to_string((static_cast<unsigned long long>(number()) << 32) | number());
}

CopyState state_of(const struct stat& what, bool linked) {
    return {what.st_ino, what.st_size, what.st_mtim, what.st_ctim, linked};
}

}  // namespace

std::string undo_journal_path(const std::string& state_folder) {
    return state_folder + "/last-operation";
}

UndoJournal::UndoJournal(const std::string& state_folder)
    : state_folder_(state_folder), gave_up_(state_folder.empty()) {}

bool UndoJournal::begin() {
    if (file_) return true;
    if (!make_folders(state_folder_)) return false;
    file_ = take_journal(undo_journal_path(state_folder_));
    operation_ = new_name();
    const std::string start = begun_entry(operation_);
    return file_ && ftruncate(file_.get(), 0) == 0 &&
           write_fully(file_.get(), start.data(), start.size());
}

void UndoJournal::give_up() {
    gave_up_ = true;
    operation_.clear();
    // Half a journal would undo half an operation, and an older journal the wrong one.
    if (!file_ || ftruncate(file_.get(), 0) != 0) unlink(undo_journal_path(state_folder_).c_str());
}

void UndoJournal::record(const std::string& entry) {
    if (gave_up_) return;
    if (!begin() || !write_fully(file_.get(), entry.data(), entry.size())) give_up();
}

void UndoJournal::moving(const std::string& source, const std::string& target, ino_t inode) {
    record(moving_entry(source, target, inode));
}

void UndoJournal::trashing(const std::string& path, const Trashed& trashed, ino_t inode) {
    record(trashing_entry(path, trashed, inode));
}

void UndoJournal::aliasing(const std::string& source, const std::string& target) {
    record(aliasing_entry(source, target));
}

void UndoJournal::copying(const std::string& source, const std::string& target,
                          const struct stat& what, bool linked) {
    record(copying_entry(source, target, state_of(what, linked)));
}

void UndoJournal::copied() { record(copied_entry()); }

void UndoJournal::not_done() { record(not_done_entry()); }

void UndoJournal::emptying(const std::string& source, const std::string& target, ino_t original) {
    record(emptying_entry(source, target, original));
}

void UndoJournal::elsewhere(const std::string& line) { record(elsewhere_entry(line)); }

LastOperation::LastOperation(const std::string& state_folder)
    : path_(undo_journal_path(state_folder)) {
    file_ = Descriptor(open(path_.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file_) {
        recorded_.problem = means_missing(errno)
                                ? translated("there is nothing to undo")
                                : translated("cannot read %s: %s", {path_, error_text(errno)});
    } else if (!lock_after_readers(file_.get())) {
        recorded_.problem = translated("the last operation is still under way");
    } else {
        recorded_ = read_undo_record(read_all(file_.get()));
        const bool is_empty = recorded_.steps.empty() && recorded_.problem.empty();
        if (is_empty) recorded_.problem = translated("there is nothing to undo");
    }
}

// Writes the entry after the complete entries.
bool LastOperation::add(const std::string& entry) {
    const auto end = static_cast<off_t>(recorded_.length);
    if (ftruncate(file_.get(), end) != 0 || lseek(file_.get(), end, SEEK_SET) < 0 ||
        !write_fully(file_.get(), entry.data(), entry.size())) {
        return false;
    }
    recorded_.length += entry.size();
    return true;
}

bool LastOperation::restoring(size_t step, ino_t inode) {
    return add(restoring_entry(step, inode));
}

bool LastOperation::undone(size_t step) { return add(undone_entry(step)); }

void LastOperation::forget() {
    if (is_at(path_, file_.get())) unlink(path_.c_str());
}

}  // namespace operations
