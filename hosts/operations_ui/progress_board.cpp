#include "operations_ui/progress_board.h"

#include <utility>

namespace operations {

void ProgressBoard::progressed(const Progress& progress) {
    const std::lock_guard guard(mutex_);
    progress_ = progress;
}

Answer ProgressBoard::ask(const Conflict& conflict) {
    std::unique_lock lock(mutex_);
    if (cancelled_) return {Choice::Stop};
    question_ = conflict;
    answer_.reset();
    answered_.wait(lock, [this] { return answer_.has_value(); });
    return *answer_;
}

bool ProgressBoard::is_cancelled() {
    const std::lock_guard guard(mutex_);
    return cancelled_;
}

void ProgressBoard::ended(const Report& report) {
    const std::lock_guard guard(mutex_);
    report_ = report;
}

Progress ProgressBoard::progress() {
    const std::lock_guard guard(mutex_);
    return progress_;
}

std::optional<Conflict> ProgressBoard::take_question() {
    const std::lock_guard guard(mutex_);
    return std::exchange(question_, {});
}

void ProgressBoard::answer(const Answer& answer) {
    const std::lock_guard guard(mutex_);
    answer_ = answer;
    answered_.notify_all();
}

void ProgressBoard::cancel() {
    const std::lock_guard guard(mutex_);
    cancelled_ = true;
}

std::optional<Report> ProgressBoard::take_report() {
    const std::lock_guard guard(mutex_);
    return std::exchange(report_, {});
}

}  // namespace operations
