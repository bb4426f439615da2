// What an operation does when a name is taken.
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>

#include "file_steps/folder.h"
#include "file_steps/new_names.h"
#include "file_steps/visible_text.h"
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
        settle_skipped(item, translated("stopped"));
        return true;
    }
    if (item.choice != Choice::Skip) return false;
    settle_skipped(item, translated("%s is there already", {quoted_name(item.name)}));
    return true;
}

// Called after item.target_name was found taken: chooses another name or makes this one free. False
// when the item is settled.
bool Operation::make_room(Item& item) {
    if (!item.choice) item.choice = decide(item, item.target_name);
    if (is_settled_by_choice(item) || !may_try_again(item)) return false;
    if (item.choice == Choice::Replace) return trash_target(item);
    item.target_name = copy_name(item.name, S_ISDIR(item.what.st_mode), ++item.attempt);
    return true;
}

// Limits the names that are tried: a disk may say of every name that it is taken. False when the
// item is settled.
bool Operation::may_try_again(Item& item) {
    constexpr unsigned most_tries = 10000;
    if (item.tries++ < most_tries && work_.is_wanted()) return true;
    if (!work_.is_stopped())
        work_.fail(translated("no name is free for %s", {quoted_name(item.name)}));
    give_back(item);
    settle_failed(item);
    return false;
}

bool Operation::trash_target(Item& item) {
    struct stat target;
    const int folder = destination_.get();
    bool ready = look_at(folder, item.target_name.c_str(), &target);
    if (!ready && means_missing(errno)) return true;
    if (!ready)
        work_.fail(to_translate("cannot look at %s: %s"), target_path(item.target_name), errno);
    const std::optional<bool> inside = ready ? holds_source(item, target) : std::nullopt;
    if (ready && !inside)
        ready = work_.fail(to_translate("cannot find the folders that contain %s: %s"), item.path,
                           errno);
    if (ready && *inside) {
        ready = work_.fail(
            translated("%s cannot be replaced by what is in it", {quoted_name(item.target_name)}));
    }
    Trashed trashed;
    const std::string path = target_path(item.target_name);
    if (ready && put_in_trash({folder, item.target_name, target}, path, &trashed)) {
        item.replaced = trashed;
        return true;
    }
    if (ready && !work_.is_stopped())
        work_.fail(translated("%s; it was not replaced", {work_.take_problem()}));
    give_back(item);
    settle_failed(item);
    return false;
}

bool Operation::put_in_trash(const Thing& thing, const std::string& path, Trashed* trashed) {
    std::string problem;
    bool recorded = false;
    const auto before = [&](const Trashed& to) {
        if (std::exchange(recorded, false)) journal_.not_done();
        if (!work_.is_wanted()) return false;
        journal_.trashing(path, to, thing.what.st_ino);
        return recorded = true;
    };
    if (move_into_trash(thing, before, trashed, &problem)) return true;
    if (recorded) journal_.not_done();
    return work_.fail(problem);
}

// Restores a replaced file, because nothing came in its place.
void Operation::give_back(Item& item) {
    if (!item.replaced) return;
    if (take_from_trash(*item.replaced, destination_.get(), item.target_name)) journal_.not_done();
    item.replaced.reset();
}

// Nothing, with errno, when the answer is unknown.
std::optional<bool> Operation::holds_source(const Item& item, const struct stat& target) {
    if (!S_ISDIR(target.st_mode)) return false;
    struct stat what;
    Descriptor at(openat(item.folder->get(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::set<Identity> seen;
    while (at && fstat(at.get(), &what) == 0) {
        if (!seen.emplace(what.st_dev, what.st_ino).second) return false;
        if (what.st_dev == target.st_dev && what.st_ino == target.st_ino) return true;
        at = Descriptor(openat(at.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    return std::nullopt;
}

}  // namespace operations
