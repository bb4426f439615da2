// What the steps of one request share: whom to tell, and what went wrong. The worker thread.
#pragma once

#include <string>

#include "file_steps/request.h"

namespace operations {

class TreeCount;

class Work {
  public:
    explicit Work(Observer& observer) : observer_(observer) {}

    // Keeps the first problem, as a line: what, the name in quotes, the error. Always false.
    bool fail(const std::string& what, const std::string& path, int error);
    // The same of a whole line.
    bool fail(const std::string& line);
    // What could not be kept of something that went well otherwise. Kept once.
    void remark(const std::string& line);
    // The problem or remark so far; none afterwards.
    std::string take_problem();
    std::string take_remark();
    bool has_failed() const { return !problem_.empty(); }

    // Tells of progress. False when the user wants no more; then that is the problem.
    bool advance(const std::string& path, uint64_t items, uint64_t bytes);
    uint64_t bytes_done() const { return progress_.bytes_done; }
    // Totals of so many things, none of which is looked into.
    void set_items(uint64_t items) { progress_.items_total = items; }
    // Totals from a count that goes on beside the work; it must outlive the work.
    void set_count(const TreeCount* count) { count_ = count; }
    bool is_stopped() const { return stopped_; }
    // The same question without news of progress, for what is tried again and again.
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
