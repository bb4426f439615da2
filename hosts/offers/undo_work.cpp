#include "offers/undo_work.h"

#include <errno.h>
#include <host/text.h>

#include <new>
#include <system_error>
#include <utility>

#include "operations/engine.h"

namespace {

using operations::Observer;
using operations::Report;

Report refusal(const std::string& reason) {
    Report report;
    report.outcomes.push_back({"", operations::State::Failed, "", reason});
    return report;
}

Report undo_at(const std::string& operation, Observer& observer) {
    if (operation.empty()) return operations::undo_last(observer);
    return operations::undo_operation(operation, observer);
}

void carry_out(UndoWork* work, const std::shared_ptr<Observer>& observer,
               const std::string& operation) {
    try {
        work->report = undo_at(operation, *observer);
    } catch (const std::bad_alloc&) {
        work->report = refusal(error_text(ENOMEM));
    }
    observer->ended({});
}

}  // namespace

void start_undo(UndoWork* work, std::shared_ptr<Observer> observer, const std::string& operation) {
    try {
        work->thread = std::thread(carry_out, work, observer, operation);
    } catch (const std::system_error&) {
        work->report = refusal(translated("the system cannot start another thread"));
        observer->ended({});
    }
}
