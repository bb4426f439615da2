// Undoes the last operation: every step is checked before the first is undone, and each undone step
// is written down, so that an interrupted undo can be repeated.
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>

#include "file_steps/folder.h"
#include "file_steps/visible_text.h"
#include "operations/engine.h"
#include "operations/last_done.h"
#include "operations/operation.h"
#include "operations/undo_checks.h"

namespace operations {

namespace {

// The folder of a file, kept open for other files in it.
class Folders {
  public:
    int of(const std::string& path) {
        const std::string folder = parent_of(path);
        if (!open_ || folder != path_) {
            open_ = Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            path_ = folder;
        }
        return open_.get();
    }

  private:
    std::string path_;
    Descriptor open_;
};

class Undoing {
  public:
    Undoing(LastOperation& last, Observer& observer, const std::string& state_folder)
        : last_(last), observer_(observer), state_folder_(state_folder) {}
    // Returns why the step could not be undone, or an empty line.
    std::string undo(size_t index, Need need);

  private:
    std::string move_back(size_t index);
    std::string put_in_trash(const std::string& path, unsigned long long inode);
    std::string restore(const Step& step);
    std::string remove_target(const Step& step);

    LastOperation& last_;
    Observer& observer_;
    const std::string state_folder_;
    Folders sources_, targets_;
};

std::string Undoing::undo(size_t index, Need need) {
    const Step& step = last_.steps()[index];
    std::string problem;
    if (need == Need::ReplaceRest) problem = put_in_trash(step.source, step.original);
    if (!problem.empty()) return problem;
    switch (need) {
        case Need::Nothing:
            break;
        case Need::MoveBack:
        case Need::ReplaceRest:
            problem = move_back(index);
            break;
        case Need::TrashTarget:
            problem = put_in_trash(step.target, step.inode);
            break;
        case Need::RemoveTarget:
            problem = remove_target(step);
            break;
        case Need::RestoreTrash:
            problem = restore(step);
            break;
        case Need::ForgetTrash:
            unlink(step.trashed.info.c_str());
            break;
    }
    if (!problem.empty() || last_.undone(index)) return problem;
    return translated("cannot record what was undone: %s", {error_text(errno)});
}

std::string Undoing::move_back(size_t index) {
    const Step& step = last_.steps()[index];
    const int source = sources_.of(step.source), target = targets_.of(step.target);
    struct stat what;
    if (!look_at(target, name_in_path(step.target).c_str(), &what) || what.st_ino != step.inode) {
        return translated("%s is another file now", {quoted_name(step.target)});
    }
    if (move_free(target, name_in_path(step.target), source, name_in_path(step.source))) return "";
    if (errno == EEXIST) {
        return translated("there is another %s now where it was", {quoted_name(step.source)});
    }
    if (errno != EXDEV)
        return translated("cannot move %s: %s", {quoted_name(step.target), error_text(errno)});
    const Request request = {Kind::Move, {step.target}, parent_of(step.source), false};
    Operation operation(request, observer_, state_folder_, false);
    operation.set_exact_name(name_in_path(step.source),
                             [&](ino_t inode) { return last_.restoring(index, inode); });
    const Outcome outcome = operation.run().outcomes.front();
    return outcome.state == State::Done ? "" : outcome.reason;
}

std::string Undoing::put_in_trash(const std::string& path, unsigned long long inode) {
    Thing thing = {targets_.of(path), name_in_path(path), {}};
    if (!look_at(thing.folder, thing.name.c_str(), &thing.what) || thing.what.st_ino != inode) {
        return translated("%s is another file now", {quoted_name(path)});
    }
    std::string problem;
    Trashed trashed;
    const auto before = [this](const Trashed&) { return !observer_.is_cancelled(); };
    return move_into_trash(thing, before, &trashed, &problem) ? "" : problem;
}

std::string Undoing::restore(const Step& step) {
    struct stat what;
    const int folder = sources_.of(step.source);
    if (!look_at(AT_FDCWD, step.trashed.file.c_str(), &what) || what.st_ino != step.inode) {
        return translated("%s is no longer in the trash", {quoted_name(step.source)});
    }
    if (take_from_trash(step.trashed, folder, name_in_path(step.source))) return "";
    return translated("cannot take %s out of the trash: %s",
                      {quoted_name(step.source), error_text(errno)});
}

// Looks again, as the steps undone before this one may have put another file there, or may have
// removed the file's other name.
std::string Undoing::remove_target(const Step& step) {
    const std::string& path = step.target;
    if (!can_lose_target(step)) return translated("%s is another file now", {quoted_name(path)});
    if (unlinkat(targets_.of(path), name_in_path(path).c_str(), 0) == 0) return "";
    return translated("cannot remove %s: %s", {quoted_name(path), error_text(errno)});
}

std::string words_for(const Step& step, Need need) {
    const std::string name = quoted_name(step.source), folder = in_quotes(parent_of(step.source));
    switch (need) {
        case Need::Nothing:
        case Need::ForgetTrash:
            break;
        case Need::MoveBack:
        case Need::ReplaceRest:
            return translated("%s is back in %s", {name, folder});
        case Need::RestoreTrash:
            return translated("%s is back in %s, out of the trash", {name, folder});
        case Need::TrashTarget:
            return translated("the copy %s is in the trash", {in_quotes(step.target)});
        case Need::RemoveTarget:
            return translated(step.kind == Step::Aliased ? to_translate("the alias %s is removed")
                                                         : to_translate("%s is removed"),
                              {in_quotes(step.target)});
    }
    return "";
}

Outcome outcome_of(const Step& step, State state, const std::string& reason) {
    const bool restored = step.kind == Step::Moved || step.kind == Step::Trashed;
    return {step.kind == Step::Trashed ? step.trashed.file : step.target, state,
            restored && state == State::Done ? step.source : "", reason};
}

// Reports every problem, if there is one.
Report problems_of(const std::vector<Step>& steps, const std::vector<Plan>& plans) {
    Report report;
    for (size_t index = 0; index < plans.size(); index++) {
        const std::string& problem = plans[index].problem;
        if (problem.empty()) continue;
        report.outcomes.push_back(outcome_of(steps[index], State::Failed, problem));
    }
    return report;
}

const char* text_of_another(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return to_translate(
                "another operation came after it (moving %s), and only the last one can be undone");
        case Kind::Copy:
            return to_translate(
                "another operation came after it (copying %s), and only the last one can be "
                "undone");
        case Kind::Alias:
            return to_translate(
                "another operation came after it (making an alias of %s), and only the last one "
                "can be undone");
        case Kind::Trash:
            break;
    }
    return to_translate(
        "another operation came after it (trashing %s), and only the last one can be undone");
}

// Why an operation that is not the last one cannot be undone.
std::string came_after(const std::vector<Step>& steps) {
    const auto done = done_by(steps);
    if (!done) return translated("there is nothing to undo");
    std::string files = quoted_name(done->name);
    if (done->count > 1) {
        files = translated_count("%s and %s other", "%s and %s others", done->count - 1,
                                 {files, std::to_string(done->count - 1)});
    }
    return translated(text_of_another(done->kind), {files});
}

Report refusal(const std::string& reason) {
    Report report;
    report.outcomes.push_back({"", State::Failed, "", reason});
    return report;
}

Report undo_steps(LastOperation& last, Observer& observer, const std::string& state_folder) {
    const std::vector<Plan> plans = UndoChecks(last.steps()).plans();
    Report report = problems_of(last.steps(), plans);
    if (!report.outcomes.empty()) return report;
    Undoing undoing(last, observer, state_folder);
    for (size_t index = plans.size(); index-- > 0;) {
        const Step& step = last.steps()[index];
        if (step.is_undone) continue;
        report.stopped = observer.is_cancelled();
        const std::string problem = report.stopped
                                        ? translated("stopped; what is left can still be undone")
                                        : undoing.undo(index, plans[index].need);
        const State state = problem.empty() ? State::Done : State::Failed;
        const std::string words = words_for(step, plans[index].need);
        report.outcomes.push_back(outcome_of(step, state, problem.empty() ? words : problem));
        if (!problem.empty()) return report;
    }
    last.forget();
    return report;
}

}  // namespace

Report undo_last(Observer& observer, const std::string& state_folder) {
    LastOperation last(state_folder);
    if (!last.problem().empty()) return refusal(last.problem());
    return undo_steps(last, observer, state_folder);
}

Report undo_operation(const std::string& operation, Observer& observer,
                      const std::string& state_folder) {
    LastOperation last(state_folder);
    if (!last.problem().empty()) return refusal(last.problem());
    if (last.operation() != operation) return refusal(came_after(last.steps()));
    return undo_steps(last, observer, state_folder);
}

}  // namespace operations
