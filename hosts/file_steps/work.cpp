#include "file_steps/work.h"

#include <host/text.h>

#include <utility>

#include "file_steps/tree_count.h"
#include "file_steps/visible_text.h"

namespace operations {

bool Work::fail(const char* what, const std::string& path, int error) {
    return fail(translated(what, {quoted_name(path), error_text(error)}));
}

bool Work::fail(const std::string& line) {
    if (problem_.empty()) problem_ = line;
    return false;
}

void Work::remark(const std::string& line) {
    if (remark_.empty()) remark_ = line;
}

std::string Work::take_problem() { return std::exchange(problem_, {}); }
std::string Work::take_remark() { return std::exchange(remark_, {}); }

bool Work::advance(const std::string& path, uint64_t items, uint64_t bytes) {
    progress_.items_done += items;
    progress_.bytes_done += bytes;
    progress_.path = path;
    if (count_ && count_->is_done()) {
        progress_.items_total = count_->items();
        progress_.bytes_total = count_->bytes();
        count_ = nullptr;
    }
    observer_.progressed(progress_);
    return is_wanted();
}

bool Work::is_wanted() {
    if (!stopped_ && !observer_.is_cancelled()) return true;
    stopped_ = true;
    return fail(translated("stopped"));
}

}  // namespace operations
