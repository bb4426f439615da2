#include "bench/scan_floor.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace bench {

namespace {

// The name's offset in `names`, where the names are stored one after the other.
std::vector<size_t> read_names(int folder, std::vector<char>& names) {
    std::vector<size_t> offsets;
    std::vector<char> buffer(256 * 1024);
    for (;;) {
        const ssize_t size = getdents64(folder, buffer.data(), buffer.size());
        if (size <= 0) return offsets;
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
            at += entry->d_reclen;
            if (!strcmp(entry->d_name, ".") || !strcmp(entry->d_name, "..")) continue;
            offsets.push_back(names.size());
            names.insert(names.end(), entry->d_name, entry->d_name + strlen(entry->d_name) + 1);
        }
    }
}

int compare(const void* a, const void* b) {
    return strcmp(*static_cast<const char* const*>(a), *static_cast<const char* const*>(b));
}

}  // namespace

size_t scan_floor(const char* path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return 0;
    std::vector<char> names;
    std::vector<const char*> sorted;
    for (size_t offset : read_names(folder, names)) sorted.push_back(names.data() + offset);
    std::string full = std::string(path) + "/";
    const size_t prefix = full.size();
    for (const char* name : sorted) {
        struct statx what;
        char information[32];
        statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_MODE, &what);
        full.resize(prefix);
        full += name;
        lgetxattr(full.c_str(), "user.com.apple.FinderInfo", information, sizeof information);
    }
    qsort(sorted.data(), sorted.size(), sizeof sorted[0], compare);
    close(folder);
    return sorted.size();
}

}  // namespace bench
