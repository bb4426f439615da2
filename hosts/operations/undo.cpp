// Undoing the last operation: every step is looked at before the first is undone.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>

#include "operations/engine.h"
#include "operations/folder.h"
#include "operations/operation.h"

namespace operations {

namespace {

bool is_later(const timespec& one, const timespec& other) {
    return one.tv_sec != other.tv_sec ? one.tv_sec > other.tv_sec : one.tv_nsec > other.tv_nsec;
}

bool is_there(const std::string& path, struct stat* what) {
    return Look(AT_FDCWD, path.c_str(), what);
}

bool changed_since(int folder, const char* name, const timespec& time) {
    struct stat what;
    if (!Look(folder, name, &what) || is_later(what.st_ctim, time)) return true;
    if (!S_ISDIR(what.st_mode)) return false;
    const Descriptor inside = OpenFolder(folder, name);
    std::vector<std::string> names;
    if (!inside || !ReadNames(inside.get(), &names)) return true;
    for (const std::string& entry : names) {
        if (changed_since(inside.get(), entry.c_str(), time)) return true;
    }
    return false;
}

std::string text_of_link(const std::string& path) {
    char text[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), text, sizeof text);
    return size < 0 ? "" : std::string(text, static_cast<size_t>(size));
}

class Undoing {
  public:
    Undoing(const std::vector<Step>& steps, Observer& observer, const std::string& state_folder)
        : steps_(steps), observer_(observer), state_folder_(state_folder) {}

    // Empty when it was undone before, or did not happen; then *problem is empty too.
    bool is_needed(const Step& step) const;
    // Why the step cannot be undone, or an empty line.
    std::string check(const Step& step) const;
    std::string undo(const Step& step);

  private:
    std::string check_moved(const Step& step) const;
    std::string check_free(const std::string& path) const;
    std::string move_back(const Step& step);

    const std::vector<Step>& steps_;
    Observer& observer_;
    const std::string state_folder_;
};

bool Undoing::is_needed(const Step& step) const {
    struct stat source, target;
    const bool has_source = is_there(step.source, &source);
    if (step.kind == Step::Trashed) return is_there(step.trashed.file, &target) || !has_source;
    const bool has_target = is_there(step.target, &target);
    if (step.kind != Step::Moved) return has_target;
    return has_target ? !has_source || target.st_ino == step.inode : !has_source;
}

std::string Undoing::check(const Step& step) const {
    struct stat what;
    if (step.kind == Step::Moved) return check_moved(step);
    if (step.kind == Step::Aliased) {
        const bool same = text_of_link(step.target) == step.source;
        return same ? "" : QuotedName(step.target) + " is another file now";
    }
    if (step.kind == Step::Copied) {
        const bool same = is_there(step.target, &what) && what.st_ino == step.inode &&
                          !changed_since(AT_FDCWD, step.target.c_str(), step.unchanged_since);
        return same ? "" : "the copy " + QuotedName(step.target) + " was changed since";
    }
    if (!is_there(step.trashed.file, &what) || what.st_ino != step.inode) {
        return QuotedName(step.source) + " is no longer in the trash";
    }
    return check_free(step.source);
}

std::string Undoing::check_moved(const Step& step) const {
    struct stat what;
    if (!is_there(step.target, &what)) return QuotedName(step.target) + " is no longer there";
    if (what.st_ino != step.inode) return QuotedName(step.target) + " is another file now";
    return check_free(step.source);
}

// Free now, or once another step is undone.
std::string Undoing::check_free(const std::string& path) const {
    struct stat what;
    bool is_taken = is_there(path, &what), has_folder = is_there(ParentOf(path), &what);
    for (const Step& step : steps_) {
        if (step.kind != Step::Trashed && step.target == path) is_taken = false;
        if (path.compare(0, step.source.size() + 1, step.source + "/") == 0) has_folder = true;
    }
    if (is_taken) return "there is another " + QuotedName(path) + " now where it was";
    return has_folder ? "" : "the folder " + QuotedName(ParentOf(path)) + " is no longer there";
}

std::string Undoing::undo(const Step& step) {
    std::string problem;
    if (step.kind == Step::Moved) return move_back(step);
    if (step.kind == Step::Copied) {
        Trashed trashed;
        PutInTrash(
            step.target, [](const Trashed&) { return true; }, &trashed, &problem);
        return problem;
    }
    const bool undone = step.kind == Step::Aliased ? unlink(step.target.c_str()) == 0
                                                   : TakeFromTrash(step.trashed, step.source);
    return undone ? "" : "cannot bring back " + QuotedName(step.source) + ": " + strerror(errno);
}

std::string Undoing::move_back(const Step& step) {
    Request request = {Kind::Move, {step.target}, ParentOf(step.source), false};
    Operation operation(request, observer_, state_folder_, false);
    operation.set_exact_name(NameOf(step.source));
    const Outcome outcome = operation.run().outcomes.front();
    return outcome.state == State::Done ? "" : outcome.reason;
}

Outcome outcome_of(const Step& step, State state, const std::string& reason) {
    const bool restored = step.kind == Step::Moved || step.kind == Step::Trashed;
    return {step.kind == Step::Trashed ? step.trashed.file : step.target, state,
            restored && state == State::Done ? step.source : "", reason};
}

}  // namespace

Report UndoLast(Observer& observer, const std::string& state_folder) {
    Report report;
    LastOperation last(state_folder);
    if (!last.problem().empty()) {
        report.outcomes.push_back({"", State::Failed, "", last.problem()});
        return report;
    }
    Undoing undoing(last.steps(), observer, state_folder);
    for (const Step& step : last.steps()) {
        const std::string problem = undoing.is_needed(step) ? undoing.check(step) : "";
        if (!problem.empty()) report.outcomes.push_back(outcome_of(step, State::Failed, problem));
    }
    if (!report.outcomes.empty()) return report;
    for (auto step = last.steps().rbegin(); step != last.steps().rend(); ++step) {
        const std::string problem = undoing.is_needed(*step) ? undoing.undo(*step) : "";
        const State state = problem.empty() ? State::Done : State::Failed;
        report.outcomes.push_back(outcome_of(*step, state, problem));
        if (!problem.empty()) return report;
    }
    last.forget();
    return report;
}

}  // namespace operations
