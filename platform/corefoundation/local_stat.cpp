#include "corefoundation/local_stat.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <poll.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <string_view>
#include <vector>

namespace files {

namespace {

const char* const local_types[] = {"bcachefs", "btrfs", "devtmpfs", "erofs",    "exfat", "ext2",
                                   "ext3",     "ext4",  "f2fs",     "iso9660",  "jfs",   "ntfs3",
                                   "overlay",  "ramfs", "reiserfs", "squashfs", "tmpfs", "udf",
                                   "vfat",     "xfs",   "zfs"};

struct Mount {
    std::string folder;
    bool is_local;
};

// Takes the text before the mark off its beginning, with the mark.
std::string_view taken_until(char mark, std::string_view* text) {
    const std::string_view taken = text->substr(0, text->find(mark));
    text->remove_prefix(std::min(taken.size() + 1, text->size()));
    return taken;
}

bool is_local_type(std::string_view type) {
    for (const char* local : local_types) {
        if (type == local) return true;
    }
    return false;
}

// Spaces and similar characters are written as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            plain += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 3)), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

bool is_above(const std::string& folder, const std::string& path) {
    if (folder == "/") return true;
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

// The list of mounts, read again when it has changed.
class Mounts {
  public:
    // The folder of the mount that the path is on; empty unless all mounts on the way are local.
    std::string local_mount_of(const std::string& path) {
        const std::lock_guard guard(lock_);
        if (!is_current()) read_again();
        std::string best;
        for (const Mount& mount : mounts_) {
            if (!is_above(mount.folder, path)) continue;
            if (!mount.is_local) return {};
            if (mount.folder.size() > best.size()) best = mount.folder;
        }
        return best;
    }

    std::string foreign_mount_of(const std::string& path) {
        const std::lock_guard guard(lock_);
        if (!is_current()) read_again();
        std::string best;
        for (const Mount& mount : mounts_) {
            if (mount.is_local || !is_above(mount.folder, path)) continue;
            if (mount.folder.size() > best.size()) best = mount.folder;
        }
        return best;
    }

    std::vector<std::string> foreign_mounts_in(const std::string& folder) {
        const std::lock_guard guard(lock_);
        if (!is_current()) read_again();
        std::vector<std::string> names;
        for (const Mount& mount : mounts_) {
            const size_t slash = mount.folder.rfind('/');
            const std::string above = mount.folder.substr(0, slash + 1);
            if (!mount.is_local && (above == folder || above == folder + "/")) {
                names.push_back(mount.folder.substr(slash + 1));
            }
        }
        return names;
    }

  private:
    // A forked process may have moved to other mounts.
    bool is_current() const {
        if (file_ < 0 || process_ != getpid()) return false;
        pollfd changed = {file_, POLLPRI, 0};
        return poll(&changed, 1, 0) == 0;
    }

    void read_again() {
        mounts_.clear();
        if (process_ != getpid() && file_ >= 0) {
            close(file_);
            file_ = -1;
        }
        if (file_ < 0) file_ = open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
        process_ = getpid();
        if (file_ < 0 || lseek(file_, 0, SEEK_SET) != 0) return;
        std::string text;
        char buffer[16384];
        for (ssize_t count; (count = read(file_, buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<size_t>(count));
        }
        std::string_view rest = text;
        while (!rest.empty()) add(taken_until('\n', &rest));
    }

    // 36 35 98:0 /root /folder options - type source options
    void add(std::string_view line) {
        for (int skipped = 0; skipped < 4; skipped++) taken_until(' ', &line);
        const std::string_view folder = taken_until(' ', &line);
        while (!line.empty() && taken_until(' ', &line) != "-") {
        }
        mounts_.push_back({unescaped(folder), is_local_type(taken_until(' ', &line))});
    }

    std::mutex lock_;
    int file_ = -1;
    pid_t process_ = 0;
    std::vector<Mount> mounts_;
};

// Never destroyed: other threads may still ask while the process ends.
Mounts& mounts() {
    static Mounts& mounts = *new Mounts;
    return mounts;
}

// Opens a path without leaving the mount that it begins on.
int open_on_mount(int root, const char* path) {
    open_how how = {};
    how.flags = O_PATH | O_CLOEXEC;
    how.resolve = RESOLVE_NO_XDEV | RESOLVE_NO_MAGICLINKS;
    const auto file = static_cast<int>(syscall(SYS_openat2, root, path, &how, sizeof how));
    // A system without this call can only be told by its list of mounts what is local.
    if (file < 0 && errno == ENOSYS) return openat(root, path, O_PATH | O_CLOEXEC);
    return file;
}

// Opens a path without leaving the mount whose root is `folder`; fails with EXDEV when the path
// would leave it. The kernel lets links to absolute paths stay on a mount only where that mount is
// "/" and the lookup begins with an absolute path.
int open_within(const std::string& folder, const std::string& path) {
    if (folder == "/") return open_on_mount(AT_FDCWD, path.c_str());
    const int root = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (root < 0) return -1;
    const size_t rest = path.find_first_not_of('/', folder.size());
    const int file = open_on_mount(root, rest == path.npos ? "." : path.c_str() + rest);
    const int error = errno;
    close(root);
    errno = error;
    return file;
}

}  // namespace

Local local_stat(const std::string& path, struct stat* status) {
    if (path.empty()) return Local::missing;
    const std::string folder = mounts().local_mount_of(path);
    if (folder.empty()) return Local::unknown;
    const int file = open_within(folder, path);
    if (file < 0) {
        const bool is_missing = errno == ENOENT || errno == ENOTDIR || errno == EACCES;
        return is_missing ? Local::missing : Local::unknown;
    }
    const bool is_found = fstat(file, status) == 0;
    close(file);
    return is_found ? Local::found : Local::missing;
}

std::vector<std::string> foreign_mounts_in(const std::string& folder) {
    return mounts().foreign_mounts_in(folder);
}

std::string foreign_mount_of(const std::string& path) { return mounts().foreign_mount_of(path); }

}  // namespace files
