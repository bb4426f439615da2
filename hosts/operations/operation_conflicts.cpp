// Of an operation: what is done when a name is taken.
#include <errno.h>
#include <fcntl.h>

#include "operations/folder.h"
#include "operations/new_names.h"
#include "operations/operation.h"

namespace operations {

Choice Operation::decide(const Item& item, const std::string& name) {
    if (!exact_name_.empty()) return Choice::Skip;
    if (request_.replace) return Choice::Replace;
    if (choice_for_all_) return *choice_for_all_;
    const size_t left = request_.sources.size() - item.index - 1;
    const Answer answer = work_.observer().ask({request_.kind, item.path, target_path(name), left});
    if (answer.choice == Choice::Stop) work_.stop();
    if (answer.apply_to_all) choice_for_all_ = answer.choice;
    return answer.choice;
}

// Whether the choice leaves nothing more to do for the item.
bool Operation::is_settled_by_choice(const Item& item) {
    if (item.choice == Choice::Stop) {
        settle_skipped(item, "stopped");
        return true;
    }
    if (item.choice != Choice::Skip) return false;
    settle_skipped(item, QuotedName(item.name) + " is there already");
    return true;
}

// After item.target_name was found taken: takes another name or makes this one free. False when
// the item is settled.
bool Operation::make_room(Item& item) {
    if (!item.choice) item.choice = decide(item, item.target_name);
    if (is_settled_by_choice(item)) return false;
    if (item.choice == Choice::Replace) return trash_target(item);
    item.target_name = CopyName(item.name, S_ISDIR(item.what.st_mode), ++item.attempt);
    return true;
}

bool Operation::trash_target(Item& item) {
    struct stat target;
    if (!Look(destination_.get(), item.target_name.c_str(), &target)) return true;
    if (holds_source(item, target)) {
        work_.fail(QuotedName(item.target_name) + " cannot be replaced by what is in it");
        settle_failed(item);
        return false;
    }
    std::string problem;
    Trashed trashed;
    bool recorded = false;
    const auto before = [&](const Trashed& to) {
        if (std::exchange(recorded, true)) journal_.not_done();
        journal_.trashing(target_path(item.target_name), to, target.st_ino);
        return true;
    };
    if (PutInTrash(target_path(item.target_name), before, &trashed, &problem)) {
        item.replaced = trashed;
        return true;
    }
    if (recorded) journal_.not_done();
    work_.fail(problem + "; it was not replaced");
    settle_failed(item);
    return false;
}

// What was to be replaced comes back, because nothing came in its place.
void Operation::give_back(Item& item) {
    if (!item.replaced) return;
    if (TakeFromTrash(*item.replaced, target_path(item.target_name))) journal_.not_done();
    item.replaced.reset();
}

bool Operation::holds_source(const Item& item, const struct stat& target) {
    if (!S_ISDIR(target.st_mode)) return false;
    struct stat what;
    Descriptor at(openat(item.folder->get(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::set<Identity> seen;
    while (at && fstat(at.get(), &what) == 0 && seen.emplace(what.st_dev, what.st_ino).second) {
        if (what.st_dev == target.st_dev && what.st_ino == target.st_ino) return true;
        at = Descriptor(openat(at.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    return false;
}

}  // namespace operations
