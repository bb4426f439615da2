#include "carbon/unreached_files.h"

#include <host/unreached_files.h>

#include <algorithm>
#include <utility>

namespace {

// A host tells its user of a few. Nobody may ever ask.
constexpr size_t most = 8;

std::vector<UnreachedFile>& unreached() {
    static auto& unreached = *new std::vector<UnreachedFile>;
    return unreached;
}

}  // namespace

namespace files {

void note_unreached(const std::string& path, int error) {
    const auto is_it = [&](const UnreachedFile& file) { return file.path == path; };
    auto& known = unreached();
    if (known.size() >= most || std::any_of(known.begin(), known.end(), is_it)) return;
    known.push_back({path, error});
}

}  // namespace files

std::vector<UnreachedFile> take_unreached_files() { return std::exchange(unreached(), {}); }
