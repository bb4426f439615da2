// The data that the worker thread and the main thread exchange about one operation.
#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>

#include "file_steps/request.h"

namespace operations {

class ProgressBoard : public Observer {
  public:
    // The worker's side.
    void progressed(const Progress& progress) override;
    Answer ask(const Conflict& conflict) override;  // waits for the answer
    bool is_cancelled() override;
    void ended(const Report& report) override;

    // The main thread's side; none of these calls waits.
    Progress progress();
    std::optional<Conflict> take_question();
    void answer(const Answer& answer);
    void cancel();
    std::optional<Report> take_report();

  private:
    std::mutex mutex_;
    std::condition_variable answered_;
    Progress progress_;
    std::optional<Conflict> question_;
    std::optional<Answer> answer_;
    std::optional<Report> report_;
    bool cancelled_ = false;
};

}  // namespace operations
