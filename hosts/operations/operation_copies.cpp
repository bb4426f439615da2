// The copies of an operation. They are made under temporary names, synced many at a time, and only
// then get their final names.
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <sys/resource.h>

#include <algorithm>

#include "file_steps/folder.h"
#include "operations/operation.h"

namespace operations {

namespace {

constexpr size_t most_pending = 1024;
constexpr uint64_t most_pending_bytes = 1ull << 30;

// Pending items keep the folders of their sources open; these may use a part of the open files.
size_t most_folders() {
    rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1;
    return std::clamp<size_t>(limit.rlim_cur / 8, 1, 128);
}

}  // namespace

bool Operation::begin_copies(size_t index) {
    if (copies_) return true;
    temporaries_ = std::make_unique<Temporaries>(state_folder_, destination_.get());
    if (!temporaries_->problem().empty()) {
        const std::string problem = temporaries_->problem();
        temporaries_.reset();
        return work_.fail(problem);
    }
    copies_ = std::make_unique<TreeCopy>(work_, destination_.get(), temporaries_->prefix(),
                                         request_.kind == Kind::Move);
    count_ = std::make_unique<TreeCount>(request_.sources, index, index, 0);
    work_.set_count(count_.get());
    return true;
}

// Asked before anything is copied: whether the source of a move can be removed after the copy.
bool Operation::may_be_removed(const Item& item) {
    struct stat folder;
    const int parent = item.folder->get();
    if (fstat(parent, &folder) != 0 || faccessat(parent, ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return work_.fail(to_translate("cannot remove anything from %s: %s"), folder_path_, errno);
    }
    const uid_t user = geteuid();
    const bool is_kept = (folder.st_mode & S_ISVTX) && user != 0 && folder.st_uid != user &&
                         item.what.st_uid != user;
    return !is_kept || work_.fail(to_translate("cannot remove %s: %s"), item.path, EPERM);
}

// Settles what can be settled before the copying. False when the item is settled.
bool Operation::prepare(Item& item) {
    struct stat target;
    item.target_name = item.name;
    const bool is_taken = look_at(destination_.get(), item.name.c_str(), &target);
    if (is_taken && !item.choice) item.choice = decide(item, item.name);
    if (is_taken && is_settled_by_choice(item)) return false;
    bool ready = is_taken || means_missing(errno) ||
                 work_.fail(to_translate("cannot write %s: %s"), item.path, errno);
    if (ready && request_.kind == Kind::Move) ready = may_be_removed(item);
    if (ready) ready = begin_copies(item.index);
    if (!ready) settle_failed(item);
    return ready;
}

void Operation::copy(Item item) {
    if (!prepare(item)) return;
    item.temporary = temporaries_->prefix() + std::to_string(temporaries_made_++);
    const Place source = {item.folder->get(), name_in_path(item.path), item.path};
    const Place target = {destination_.get(), item.temporary, target_path(item.name)};
    if (!copies_->copy(source, target)) {
        discard(item);
        return settle_failed(item);
    }
    item.linked = copies_->take_linked();
    outcome(item).reason = work_.take_remark();
    pending_names_.insert(item.name);
    pending_.push_back(std::move(item));
    const bool is_much = work_.bytes_done() - bytes_before_ >= most_pending_bytes;
    if (pending_.size() >= most_pending || folders_opened_ >= most_folders() || is_much) flush();
}

void Operation::discard(Item& item) {
    if (remove_tree(destination_.get(), item.temporary.c_str())) return;
    end_count();
    if (!remove_tree(destination_.get(), item.temporary.c_str())) temporaries_->leave();
}

// The count holds open files, which the operation itself may need more.
void Operation::end_count() {
    work_.set_count(nullptr);
    count_.reset();
}

// Gives all pending copies their names, and ends moves by removing their sources.
void Operation::flush() {
    if (pending_.empty()) return;
    if (work_.is_stopped()) work_.fail(translated("stopped"));
    if (work_.is_stopped() || !copies_->sync(request_.destination)) {
        const std::string problem = work_.take_problem();
        for (Item& item : pending_) {
            discard(item);
            work_.fail(problem);
            settle_failed(item);
        }
        pending_.clear();
    }
    if (request_.kind == Kind::Move) check_pending();
    publish_pending();
    if (request_.kind == Kind::Move) empty_sources();
    copies_->forget();
    pending_.clear();
    pending_names_.clear();
    bytes_before_ = work_.bytes_done();
    folders_opened_ = 0;
}

void Operation::check_pending() {
    std::erase_if(pending_, [this](Item& item) {
        const Place source = {item.folder->get(), name_in_path(item.path), item.path};
        if (copies_->check(source, {destination_.get(), item.temporary, item.path})) return false;
        discard(item);
        settle_failed(item);
        return true;
    });
}

void Operation::publish_pending() {
    std::erase_if(pending_, [this](Item& item) {
        if (publish(item)) return false;
        discard(item);
        return true;
    });
}

// False when the item is settled without getting its name.
bool Operation::publish(Item& item) {
    const std::string remark = outcome(item).reason;
    for (item.target_name = item.name; !give_name(item);) {
        if (errno != EEXIST) {
            work_.fail(to_translate("cannot write %s: %s"), item.path, errno);
            give_back(item);
            settle_failed(item);
            return false;
        }
        if (!make_room(item)) return false;
    }
    journal_.copied();
    work_.remark(remark);
    settle_done(item, item.target_name);
    return true;
}

// False with errno.
bool Operation::give_name(Item& item) {
    const int folder = destination_.get();
    if (!announce(item)) return false;
    if (move_free(folder, item.temporary, folder, item.target_name)) return true;
    const int error = errno;
    journal_.not_done();
    errno = error;
    return false;
}

// Records which copy is about to get its name, so that an undo knows it if the process is killed.
bool Operation::announce(const Item& item) {
    struct stat what;
    if (!look_at(destination_.get(), item.temporary.c_str(), &what)) return false;
    if (before_exact_name_ && !before_exact_name_(what.st_ino)) return false;
    journal_.copying(item.path, target_path(item.target_name), what, item.linked);
    return true;
}

void Operation::empty_sources() {
    // The new names must be on the disk before the sources are removed.
    const int error = pending_.empty() || fsync(destination_.get()) == 0 ? 0 : errno;
    for (Item& item : pending_) {
        const Place source = {item.folder->get(), name_in_path(item.path), item.path};
        if (error == 0) {
            journal_.emptying(item.path, target_path(item.target_name), item.what.st_ino);
            if (copies_->remove(source)) continue;
        } else {
            work_.fail(to_translate("cannot write %s: %s"), request_.destination, error);
        }
        outcome(item).state = State::Failed;
        outcome(item).reason =
            translated("copied, but the original is still there: %s", {work_.take_problem()});
    }
}

}  // namespace operations
