// What each step of an undo has to do: found out for all steps before the first one is undone.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "file_steps/descriptor.h"
#include "operations/undo_record.h"

namespace operations {

enum class Need {
    Nothing,       // the step was not done, or is already undone
    MoveBack,      // the target goes back to the source
    ReplaceRest,   // the same, after what is left of the original has gone to the trash
    TrashTarget,   // the copy goes to the trash
    RemoveTarget,  // an alias, or a second name of the source
    RestoreTrash,  // the file in the trash goes back to the source
    ForgetTrash,   // the trash has a note about a file that did not get there
};

struct Plan {
    Need need = Need::Nothing;
    std::string problem;  // why it cannot be done; else empty
};

// Whether the target of a move or of an alias can be removed without a loss: it is a link with the
// alias's text, or another name of the source.
bool can_lose_target(const Step& step);

class UndoChecks {
  public:
    explicit UndoChecks(const std::vector<Step>& steps) : steps_(steps) {}
    // One plan for each step. The last step is undone first.
    std::vector<Plan> plans();

  private:
    Plan plan(const Step& step);
    Plan plan_moved(const Step& step);
    Plan plan_taken_away(const Step& step);
    Plan plan_copied(const Step& step);
    Plan plan_aliased(const Step& step);
    Plan plan_trashed(const Step& step);
    Plan with_free_source(const Step& step, Need need);
    Plan with_trash(const std::string& path, Need need);
    void pretend(const Step& step, Need need);
    bool will_be_there(const std::string& path) const;

    const std::vector<Step>& steps_;
    std::unordered_map<std::string, bool> is_there_;  // after the steps planned so far
    std::string folder_, folder_problem_;             // the last folder whose trash was checked
};

}  // namespace operations
