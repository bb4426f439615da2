#include "operations/undo_journal.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>

#include "operations/folder.h"

namespace operations {

namespace {

// A record is a verb and its fields, each ended by a zero byte. Names hold every other byte.
constexpr const char* verb_begun = "delvio-undo-1";
constexpr const char* verb_moving = "moving";
constexpr const char* verb_trashing = "trashing";
constexpr const char* verb_not_done = "not-done";
constexpr const char* verb_copied = "copied";
constexpr const char* verb_emptying = "emptying";
constexpr const char* verb_aliased = "aliased";
constexpr const char* verb_ended = "ended";

const struct {
    const char* verb;
    size_t fields;
} verbs[] = {
    {verb_begun, 0},  {verb_moving, 3},   {verb_trashing, 4}, {verb_not_done, 0},
    {verb_copied, 5}, {verb_emptying, 2}, {verb_aliased, 2},  {verb_ended, 1},
};

std::string path_in(const std::string& state_folder) { return state_folder + "/last-operation"; }

std::string text_of(const timespec& time) {
    return std::to_string(time.tv_sec) + " " + std::to_string(time.tv_nsec);
}

timespec time_of(const std::string& text) {
    char* rest = nullptr;
    timespec time;
    time.tv_sec = strtoll(text.c_str(), &rest, 10);
    time.tv_nsec = strtol(rest, nullptr, 10);
    return time;
}

bool is_at(const std::string& path, int file) {
    struct stat there, here;
    return stat(path.c_str(), &there) == 0 && fstat(file, &here) == 0 &&
           there.st_ino == here.st_ino && there.st_dev == here.st_dev;
}

// Opens and locks it. Another operation that still writes into it keeps a file without a name.
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

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> words;
    for (size_t at = 0, end; (end = text.find('\0', at)) != std::string::npos; at = end + 1) {
        words.push_back(text.substr(at, end - at));
    }
    return words;
}

size_t fields_of(const std::string& verb) {
    for (const auto& known : verbs) {
        if (verb == known.verb) return known.fields;
    }
    return std::string::npos;
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

}  // namespace

UndoJournal::UndoJournal(const std::string& state_folder)
    : state_folder_(state_folder), gave_up_(state_folder.empty()) {}

bool UndoJournal::begin() {
    if (file_) return true;
    if (!MakeFolders(state_folder_)) return false;
    file_ = take_journal(path_in(state_folder_));
    return file_ && ftruncate(file_.get(), 0) == 0 &&
           WriteAll(file_.get(), verb_begun, strlen(verb_begun) + 1);
}

void UndoJournal::give_up() {
    gave_up_ = true;
    // Half a journal would undo half an operation.
    if (file_ && ftruncate(file_.get(), 0) != 0) unlink(path_in(state_folder_).c_str());
}

void UndoJournal::record(const std::vector<std::string>& fields) {
    if (gave_up_) return;
    std::string text;
    for (const std::string& field : fields) text.append(field).push_back('\0');
    if (!begin() || !WriteAll(file_.get(), text.data(), text.size())) give_up();
}

void UndoJournal::moving(const std::string& source, const std::string& target, ino_t inode) {
    record({verb_moving, source, target, std::to_string(inode)});
}

void UndoJournal::trashing(const std::string& path, const Trashed& trashed, ino_t inode) {
    record({verb_trashing, path, trashed.file, trashed.info, std::to_string(inode)});
}

void UndoJournal::not_done() { record({verb_not_done}); }

void UndoJournal::copied(const std::string& source, const std::string& target,
                         const struct stat& what, bool linked) {
    record({verb_copied, source, target, std::to_string(what.st_ino), text_of(what.st_ctim),
            linked ? "linked" : ""});
}

void UndoJournal::emptying(const std::string& source, const std::string& target) {
    record({verb_emptying, source, target});
}

void UndoJournal::aliased(const std::string& source, const std::string& target) {
    record({verb_aliased, source, target});
}

void UndoJournal::ended(const timespec& time) {
    if (file_) record({verb_ended, text_of(time)});
}

LastOperation::LastOperation(const std::string& state_folder) : path_(path_in(state_folder)) {
    file_ = Descriptor(open(path_.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file_) {
        problem_ = errno == ENOENT ? "there is nothing to undo"
                                   : "cannot read " + path_ + ": " + strerror(errno);
    } else if (flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        problem_ = "the last operation is still under way";
    } else {
        read_steps(read_all(file_.get()));
        if (steps_.empty() && problem_.empty()) problem_ = "there is nothing to undo";
    }
}

void LastOperation::read_steps(const std::string& text) {
    const std::vector<std::string> words = split(text);
    for (size_t at = 0; at < words.size();) {
        const size_t count = fields_of(words[at]);
        if (count == std::string::npos) {
            problem_ = path_ + " cannot be read";
            return steps_.clear();
        }
        // The end may have been cut off with its process: that step was not begun.
        if (at + 1 + count > words.size()) return;
        const auto first = words.begin() + static_cast<std::ptrdiff_t>(at);
        read_step({first, first + 1 + static_cast<std::ptrdiff_t>(count)});
        at += 1 + count;
    }
}

bool LastOperation::read_step(const std::vector<std::string>& fields) {
    const std::string& verb = fields[0];
    const auto number = [&](size_t index) { return strtoull(fields[index].c_str(), nullptr, 10); };
    Step step;
    if (verb == verb_begun) return true;
    if (verb == verb_not_done) return steps_.empty() || (steps_.pop_back(), true);
    if (verb == verb_emptying) return set_moved(fields[1], fields[2]), true;
    if (verb == verb_ended) return set_ended(time_of(fields[1])), true;
    step.source = fields[1];
    if (verb == verb_moving) {
        step.kind = Step::Moved;
        step.target = fields[2];
        step.inode = number(3);
    } else if (verb == verb_trashing) {
        step.kind = Step::Trashed;
        step.trashed = {fields[2], fields[3]};
        step.inode = number(4);
    } else if (verb == verb_copied) {
        step.kind = Step::Copied;
        step.target = fields[2];
        step.inode = number(3);
        step.unchanged_since = time_of(fields[4]);
        step.linked = !fields[5].empty();
        copies_[step.target] = steps_.size();
    } else {
        step.kind = Step::Aliased;
        step.target = fields[2];
    }
    steps_.push_back(std::move(step));
    return true;
}

void LastOperation::set_moved(const std::string& source, const std::string& target) {
    const auto known = copies_.find(target);
    if (known == copies_.end() || steps_[known->second].source != source) return;
    steps_[known->second].kind = Step::Moved;
}

void LastOperation::set_ended(const timespec& time) {
    for (Step& step : steps_) {
        if (step.linked) step.unchanged_since = time;
    }
}

void LastOperation::forget() {
    if (is_at(path_, file_.get())) unlink(path_.c_str());
}

}  // namespace operations
