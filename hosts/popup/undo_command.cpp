#include "popup/undo_command.h"

#include "operations/engine.h"
#include "popup/command_line.h"

namespace {

class Quiet : public operations::Observer {
    void ended(const operations::Report&) override {}
};

}  // namespace

int RunUndoCommand() {
    Quiet observer;
    int status = exit_done;
    for (const operations::Outcome& outcome : operations::UndoLast(observer).outcomes) {
        if (outcome.state == operations::State::Done) continue;
        Complain("cannot undo: " + outcome.reason);
        status = exit_failed;
    }
    return status;
}
