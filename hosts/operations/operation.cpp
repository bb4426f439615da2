#include "operations/operation.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "file_steps/folder.h"
#include "file_steps/new_names.h"
#include "file_steps/visible_text.h"

namespace operations {

namespace {

// The identities of the folder and of all folders above it.
std::set<std::pair<dev_t, ino_t>> folders_above(int folder) {
    std::set<std::pair<dev_t, ino_t>> found;
    Descriptor at(openat(folder, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat what;
    while (at && fstat(at.get(), &what) == 0 && found.emplace(what.st_dev, what.st_ino).second) {
        at = Descriptor(openat(at.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    return found;
}

bool is_plain_path(const std::string& path) {
    const std::string name = name_in_path(path);
    return path.size() > 1 && path[0] == '/' && !name.empty() && name != "." && name != ".." &&
           path.find('\0') == std::string::npos;
}

}  // namespace

Operation::Operation(const Request& request, Observer& observer, const std::string& state_folder,
                     bool record)
    : request_(request),
      state_folder_(state_folder),
      work_(observer),
      journal_(record ? state_folder : "") {}

Operation::~Operation() = default;

Report Operation::run() {
    report_.outcomes.resize(request_.sources.size());
    for (size_t index = 0; index < request_.sources.size(); index++) {
        report_.outcomes[index].source = request_.sources[index];
    }
    const bool can_begin = request_.kind == Kind::Trash || open_destination();
    const std::string problem = work_.take_problem();
    work_.set_items(request_.sources.size());
    for (size_t index = 0; index < request_.sources.size(); index++) {
        if (can_begin) {
            carry(index);
        } else {
            report_.outcomes[index].state = State::Failed;
            report_.outcomes[index].reason = problem;
        }
    }
    flush();
    if (copies_ && !copies_->finish()) temporaries_->leave();
    copies_.reset();
    temporaries_.reset();
    report_.stopped = work_.is_stopped();
    report_.operation = journal_.operation();
    return std::move(report_);
}

bool Operation::open_destination() {
    const std::string& path = request_.destination;
    destination_ = Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!destination_ || fstat(destination_.get(), &destination_what_) != 0) {
        return work_.fail(to_translate("cannot open the destination %s: %s"), path, errno);
    }
    if (faccessat(destination_.get(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return work_.fail(to_translate("cannot put anything into %s: %s"), path, errno);
    }
    above_ = folders_above(destination_.get());
    return true;
}

void Operation::carry(size_t index) {
    Item item;
    item.index = index;
    if (work_.is_stopped() || work_.observer().is_cancelled()) {
        work_.stop();
        return settle_skipped(item, translated("stopped"));
    }
    if (!find(index, item) || is_refused(item)) return;
    if (pending_names_.count(item.name)) flush();
    switch (request_.kind) {
        case Kind::Move:
            return move(std::move(item));
        case Kind::Copy:
            return copy(std::move(item));
        case Kind::Alias:
            return make_alias(item);
        case Kind::Trash:
            return trash(item);
    }
}

// Opens the folder of the source and looks at the source.
bool Operation::find(size_t index, Item& item) {
    item.path = request_.sources[index];
    item.name = exact_name_.empty() ? name_in_path(item.path) : exact_name_;
    bool found = is_plain_path(item.path) || work_.fail(translated("the path names no file"));
    if (found && (!folder_ || parent_of(item.path) != folder_path_)) {
        folder_path_ = parent_of(item.path);
        folders_opened_++;
        folder_ = std::make_shared<Descriptor>(
            open(folder_path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    item.folder = folder_;
    if (found &&
        (!*folder_ || !look_at(folder_->get(), name_in_path(item.path).c_str(), &item.what))) {
        found = errno == ENOENT
                    ? work_.fail(translated("%s is no longer there", {quoted_name(item.path)}))
                    : work_.fail(to_translate("cannot read %s: %s"), item.path, errno);
    }
    if (!found) settle_failed(item);
    return found;
}

// Refuses requests that make no sense, before anything is touched.
bool Operation::is_refused(Item& item) {
    if (request_.kind == Kind::Alias || request_.kind == Kind::Trash) return false;
    if (S_ISDIR(item.what.st_mode) && above_.count({item.what.st_dev, item.what.st_ino})) {
        work_.fail(translated(request_.kind == Kind::Move
                                  ? to_translate("%s cannot be moved into itself")
                                  : to_translate("%s cannot be copied into itself"),
                              {quoted_name(item.path)}));
        settle_failed(item);
        return true;
    }
    struct stat folder;
    if (fstat(item.folder->get(), &folder) != 0) {
        work_.fail(to_translate("cannot read %s: %s"), folder_path_, errno);
        settle_failed(item);
        return true;
    }
    const bool is_same_folder =
        folder.st_dev == destination_what_.st_dev && folder.st_ino == destination_what_.st_ino;
    if (!is_same_folder || !exact_name_.empty()) return false;
    if (request_.kind == Kind::Copy) {
        item.choice = Choice::KeepBoth;
        return false;
    }
    settle_skipped(item, translated("%s is in this folder already", {quoted_name(item.path)}));
    return true;
}

void Operation::move(Item item) {
    const std::string old_name = name_in_path(item.path);
    for (item.target_name = item.name;;) {
        journal_.moving(item.path, target_path(item.target_name), item.what.st_ino);
        if (move_free(item.folder->get(), old_name, destination_.get(), item.target_name)) {
            work_.advance(item.path, 1, 0);
            return settle_done(item, item.target_name);
        }
        const int error = errno;
        journal_.not_done();
        if (error != EEXIST) give_back(item);
        if (error == EXDEV) return copy(std::move(item));
        if (error != EEXIST) {
            work_.fail(to_translate("cannot move %s: %s"), item.path, error);
            return settle_failed(item);
        }
        if (!make_room(item)) return;
    }
}

void Operation::make_alias(Item& item) {
    for (unsigned attempt = 0; may_try_again(item); attempt++) {
        const std::string name = alias_name(item.name, attempt);
        struct stat what;
        int error = look_at(destination_.get(), name.c_str(), &what) ? EEXIST : errno;
        if (means_missing(error)) {
            journal_.aliasing(item.path, target_path(name));
            if (symlinkat(item.path.c_str(), destination_.get(), name.c_str()) == 0) {
                work_.advance(item.path, 1, 0);
                return settle_done(item, name);
            }
            error = errno;
            journal_.not_done();
        }
        if (error == EEXIST) continue;
        work_.fail(to_translate("cannot make an alias of %s: %s"), item.path, error);
        return settle_failed(item);
    }
}

void Operation::trash(Item& item) {
    Trashed trashed;
    if (!put_in_trash({item.folder->get(), name_in_path(item.path), item.what}, item.path,
                      &trashed)) {
        return settle_failed(item);
    }
    work_.advance(item.path, 1, 0);
    outcome(item).target = trashed.file;
}

std::string Operation::target_path(const std::string& name) const {
    return (request_.destination == "/" ? "" : request_.destination) + "/" + name;
}

void Operation::settle_done(const Item& item, const std::string& target) {
    outcome(item).state = State::Done;
    outcome(item).target = target_path(target);
    outcome(item).reason = work_.take_remark();
}

void Operation::settle_skipped(const Item& item, const std::string& reason) {
    outcome(item).state = State::Skipped;
    outcome(item).reason = reason;
}

void Operation::settle_failed(const Item& item) {
    outcome(item).state = work_.is_stopped() ? State::Skipped : State::Failed;
    outcome(item).reason = work_.take_problem();
    work_.take_remark();
}

}  // namespace operations
