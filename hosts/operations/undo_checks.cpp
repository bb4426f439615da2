#include "operations/undo_checks.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>

#include "file_steps/folder.h"
#include "file_steps/visible_text.h"
#include "file_steps/work.h"
#include "operations/tree_compare.h"

namespace operations {

namespace {

// The state of a path. If it cannot be asked for, it counts as neither there nor missing.
struct Seen {
    explicit Seen(const std::string& path) : path_(path) {
        is_there = look_at(AT_FDCWD, path.c_str(), &what);
        error_ = is_there ? 0 : errno;
    }
    bool is(unsigned long long inode) const { return is_there && what.st_ino == inode; }
    bool is_missing() const { return !is_there && means_missing(error_); }
    bool is_unknown() const { return !is_there && !means_missing(error_); }
    std::string problem() const {
        return translated("cannot look at %s: %s", {quoted_name(path_), error_text(error_)});
    }

    bool is_there = false;
    struct stat what = {};

  private:
    const std::string& path_;
    int error_ = 0;
};

Plan problem(const std::string& line) { return {Need::Nothing, line}; }

std::string text_of_link(const std::string& path) {
    char text[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), text, sizeof text);
    return size < 0 ? "" : std::string(text, static_cast<size_t>(size));
}

bool is_rest_of(const std::string& rest, const std::string& whole) {
    return is_remainder_of(AT_FDCWD, rest.c_str(), AT_FDCWD, whole.c_str());
}

// Whether both paths lead to the same name in the same folder, such as "/a/b" and "/a//b".
bool are_one_name(const std::string& one, const std::string& other) {
    if (name_in_path(one) != name_in_path(other)) return false;
    struct stat here = {}, there = {};
    stat(parent_of(one).c_str(), &here);
    stat(parent_of(other).c_str(), &there);
    return here.st_ino == there.st_ino && here.st_dev == there.st_dev;
}

// Whether both paths are names of one file that has at least two names. An empty place has the
// inode 0, which no file has.
bool have_one_file(const Seen& one, const Seen& other) {
    return one.is(other.what.st_ino) && one.what.st_dev == other.what.st_dev &&
           one.what.st_nlink > 1 && !S_ISDIR(one.what.st_mode);
}

}  // namespace

bool can_lose_target(const Step& step) {
    if (step.kind == Step::Aliased) return text_of_link(step.target) == step.source;
    const Seen source(step.source), target(step.target);
    return have_one_file(source, target) && !are_one_name(step.source, step.target);
}

std::vector<Plan> UndoChecks::plans() {
    std::vector<Plan> plans(steps_.size());
    for (size_t index = steps_.size(); index-- > 0;) {
        const Step& step = steps_[index];
        if (step.is_undone) continue;
        plans[index] = plan(step);
        pretend(step, plans[index].need);
    }
    return plans;
}

Plan UndoChecks::plan(const Step& step) {
    const Seen source(step.source);
    const Seen target(step.kind == Step::Trashed ? step.trashed.file : step.target);
    if (source.is_unknown() && step.kind != Step::Aliased) return problem(source.problem());
    if (target.is_unknown()) return problem(target.problem());
    switch (step.kind) {
        case Step::Moved:
            return step.original != 0 ? plan_taken_away(step) : plan_moved(step);
        case Step::Copied:
            return plan_copied(step);
        case Step::Aliased:
            return plan_aliased(step);
        case Step::Trashed:
            break;
    }
    return plan_trashed(step);
}

// Plans for a move by a rename.
Plan UndoChecks::plan_moved(const Step& step) {
    const Seen source(step.source), target(step.target);
    if (step.restored != 0 && source.is(step.restored) && target.is(step.inode)) {
        if (!is_rest_of(step.target, step.source)) {
            return problem(translated("%s was changed since", {quoted_name(step.target)}));
        }
        return with_trash(step.target, Need::TrashTarget);
    }
    if (source.is(step.inode) || (step.restored != 0 && source.is(step.restored))) {
        // Some file systems rename a file by giving it the new name before they remove the old one.
        const bool twice = target.is(step.inode) && can_lose_target(step);
        return {twice ? Need::RemoveTarget : Need::Nothing, ""};
    }
    if (target.is_missing())
        return problem(translated("%s is no longer there", {quoted_name(step.target)}));
    if (!target.is(step.inode))
        return problem(translated("%s is another file now", {quoted_name(step.target)}));
    return with_free_source(step, Need::MoveBack);
}

// Plans for a move by a copy, after which the original was removed, perhaps in part.
Plan UndoChecks::plan_taken_away(const Step& step) {
    const Seen source(step.source), target(step.target);
    if (step.restored != 0 && source.is(step.restored)) {
        if (!target.is(step.inode)) return {};
        if (!is_rest_of(step.target, step.source)) {
            return problem(translated("%s was changed since", {quoted_name(step.target)}));
        }
        return with_trash(step.target, Need::TrashTarget);
    }
    if (target.is_missing()) {
        return source.is(step.original)
                   ? Plan{}
                   : problem(translated("%s is no longer there", {quoted_name(step.target)}));
    }
    if (!target.is(step.inode))
        return problem(translated("%s is another file now", {quoted_name(step.target)}));
    if (!source.is(step.original)) return with_free_source(step, Need::MoveBack);
    if (!is_rest_of(step.source, step.target)) {
        return problem(translated("%s was changed since", {quoted_name(step.source)}));
    }
    if (is_rest_of(step.target, step.source)) return with_trash(step.target, Need::TrashTarget);
    return with_trash(step.source, Need::ReplaceRest);
}

Plan UndoChecks::plan_copied(const Step& step) {
    const Seen target(step.target);
    if (target.is_missing()) return {};
    // The copy had not got its name yet, and another file has it now.
    if (!target.is(step.inode) && !step.is_confirmed) return {};
    if (is_changed(AT_FDCWD, step.target.c_str(), step.copy)) {
        return problem(translated("the copy %s was changed since", {quoted_name(step.target)}));
    }
    return with_trash(step.target, Need::TrashTarget);
}

Plan UndoChecks::plan_aliased(const Step& step) {
    if (Seen(step.target).is_missing()) return {};
    if (can_lose_target(step)) return {Need::RemoveTarget, ""};
    return problem(translated("%s is another file now", {quoted_name(step.target)}));
}

Plan UndoChecks::plan_trashed(const Step& step) {
    const Seen source(step.source), trashed(step.trashed.file);
    if (source.is(step.inode)) {
        return {trashed.is_missing() ? Need::ForgetTrash : Need::Nothing, ""};
    }
    if (trashed.is(step.inode)) return with_free_source(step, Need::RestoreTrash);
    return problem(translated("%s is no longer in the trash", {quoted_name(step.source)}));
}

Plan UndoChecks::with_free_source(const Step& step, Need need) {
    const std::string folder = parent_of(step.source);
    if (will_be_there(step.source)) {
        return problem(
            translated("there is another %s now where it was", {quoted_name(step.source)}));
    }
    const auto known = is_there_.find(folder);
    if (known != is_there_.end() && known->second) return {need, ""};
    const Seen above(folder);
    if (above.is_unknown()) return problem(above.problem());
    if (above.is_missing()) {
        // The folder may be in one that an earlier step of the undo restores.
        for (std::string path = folder; path != "/"; path = parent_of(path)) {
            const auto restored = is_there_.find(path);
            if (restored != is_there_.end() && restored->second) return {need, ""};
        }
        return problem(translated("the folder %s is no longer there", {quoted_name(folder)}));
    }
    if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return {need, ""};
    return problem(
        translated("cannot put anything into %s: %s", {quoted_name(folder), error_text(errno)}));
}

Plan UndoChecks::with_trash(const std::string& path, Need need) {
    const std::string folder = parent_of(path);
    if (folder != folder_) {
        const Descriptor open_folder(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        folder_ = folder;
        folder_problem_ = open_folder ? why_no_trash(open_folder.get()) : error_text(errno);
    }
    if (folder_problem_.empty()) return {need, ""};
    return problem(
        translated("cannot move %s to the trash: %s", {quoted_name(path), folder_problem_}));
}

bool UndoChecks::will_be_there(const std::string& path) const {
    const auto known = is_there_.find(path);
    return known != is_there_.end() ? known->second : !Seen(path).is_missing();
}

void UndoChecks::pretend(const Step& step, Need need) {
    const bool goes = need == Need::MoveBack || need == Need::ReplaceRest ||
                      need == Need::TrashTarget || need == Need::RemoveTarget;
    const bool comes =
        need == Need::MoveBack || need == Need::ReplaceRest || need == Need::RestoreTrash;
    if (goes) is_there_[step.target] = false;
    if (comes) is_there_[step.source] = true;
}

}  // namespace operations
