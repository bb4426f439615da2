#include "command/descriptor_limit.h"

#include <host/text.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace {

// Libraries end the process when no descriptor is left. More than `most` would only slow down the
// programs that are started from here.
constexpr rlim_t fewest = 128, most = 1024;

rlim_t raised_limit() {
    rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return most;
    const rlim_t wanted = std::min(limit.rlim_max, most);
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = wanted;
        setrlimit(RLIMIT_NOFILE, &limit);
        getrlimit(RLIMIT_NOFILE, &limit);
    }
    return limit.rlim_cur;
}

}  // namespace

std::string descriptor_problem() {
    const rlim_t limit = raised_limit();
    if (limit >= fewest) return {};
    return translated("only %s files may be open at a time, and %s are needed; see \"ulimit -n\"",
                      {std::to_string(limit), std::to_string(fewest)});
}
