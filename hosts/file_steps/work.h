// Shared by the steps of one request: its observer, and its first problem. For the worker thread.
#pragma once

#include <string>

#include "file_steps/request.h"

namespace operations {

class TreeCount;

class Work {
  public:
    explicit Work(Observer& observer) : observer_(observer) {}

    // Keeps the first problem, as one line. `what` is an English text with places for the name and
    // the error, such as "cannot read %s: %s". Always returns false.
    bool fail(const char* what, const std::string& path, int error);
    // The same with the whole line given.
    bool fail(const std::string& line);
    // Keeps the first remark: what could not be kept of an otherwise successful operation.
    void remark(const std::string& line);
    // Returns the problem or remark so far, and clears it.
    std::string take_problem();
    std::string take_remark();

    // Reports progress. False when the user has cancelled; that then is the problem.
    bool advance(const std::string& path, uint64_t items, uint64_t bytes);
    uint64_t bytes_done() const { return progress_.bytes_done; }
    // Sets the total when no folder is looked into: each counts as one item.
    void set_items(uint64_t items) { progress_.items_total = items; }
    // Takes the totals from a count that runs during the work; the count must outlive the work.
    void set_count(const TreeCount* count) { count_ = count; }
    bool is_stopped() const { return stopped_; }
    // Asks whether the user still wants the work, without reporting progress; for loops of
    // attempts.
    bool is_wanted();
    void stop() { stopped_ = true; }

    Observer& observer() { return observer_; }

  private:
    Observer& observer_;
    Progress progress_;
    const TreeCount* count_ = nullptr;
    std::string problem_, remark_;
    bool stopped_ = false;
};

}  // namespace operations
