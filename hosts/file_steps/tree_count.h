// Counts the files to copy on a thread of its own, while the copying goes on.
#pragma once

#include <stdint.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace operations {

class TreeCount {
  public:
    // Begins to count the sources from index `from` on; `items` and `bytes` are already done.
    TreeCount(const std::vector<std::string>& sources, size_t from, uint64_t items, uint64_t bytes);
    // Stops the count, finished or not.
    ~TreeCount();

    bool is_done() const { return done_; }
    uint64_t items() const { return items_; }
    uint64_t bytes() const { return bytes_; }

  private:
    void count(int folder, const char* name, int depth);
    void run();

    const std::vector<std::string> sources_;
    uint64_t items_, bytes_;
    std::atomic<bool> done_ = false, cancelled_ = false;
    std::thread thread_;
};

}  // namespace operations
