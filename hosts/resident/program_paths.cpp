#include "resident/program_paths.h"

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <string_view>

namespace resident {

namespace {

constexpr std::string_view place = "/libexec/delvio/delvio-host";

}  // namespace

std::string full_program() {
    char own[PATH_MAX];
    const ssize_t size = readlink("/proc/self/exe", own, sizeof own);
    if (size <= 0 || size == sizeof own) return {};
    std::string path(own, static_cast<size_t>(size));
    for (int levels = 0; levels < 2; ++levels) {
        const size_t slash = path.rfind('/');
        if (slash == std::string::npos) return {};
        path.resize(slash);
    }
    path += place;
    return access(path.c_str(), X_OK) == 0 ? path : std::string();
}

}  // namespace resident
