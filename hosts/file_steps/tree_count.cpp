#include "file_steps/tree_count.h"

#include <fcntl.h>

#include <system_error>

#include "file_steps/folder.h"

namespace operations {

TreeCount::TreeCount(const std::vector<std::string>& sources, size_t from, uint64_t items,
                     uint64_t bytes)
    : sources_(sources.begin() + static_cast<std::ptrdiff_t>(from), sources.end()),
      items_(items),
      bytes_(bytes) {
    try {
        thread_ = std::thread(&TreeCount::run, this);
    } catch (const std::system_error&) {
        // Where no thread is to be had the copying goes on without a total.
    }
}

TreeCount::~TreeCount() {
    cancelled_ = true;
    if (thread_.joinable()) thread_.join();
}

void TreeCount::run() {
    try {
        for (const std::string& source : sources_) count(AT_FDCWD, source.c_str(), 0);
        done_ = !cancelled_;
    } catch (const std::bad_alloc&) {
        // Without memory for it the copying goes on without a total.
    }
}

// Deeper folders are not counted: the copying needs the open files.
constexpr int deepest_counted = 100;

void TreeCount::count(int parent, const char* name, int depth) {
    struct stat what;
    if (cancelled_ || !look_at(parent, name, &what)) return;
    items_++;
    if (S_ISREG(what.st_mode)) bytes_ += static_cast<uint64_t>(what.st_size);
    if (!S_ISDIR(what.st_mode)) return;
    if (depth > deepest_counted) cancelled_ = true;
    if (cancelled_) return;
    const Descriptor folder = open_folder_at(parent, name);
    std::vector<std::string> names;
    if (!folder || !names_in_folder(folder.get(), &names)) return;
    for (const std::string& entry : names) count(folder.get(), entry.c_str(), depth + 1);
}

}  // namespace operations
