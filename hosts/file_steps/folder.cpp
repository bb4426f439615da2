#include "file_steps/folder.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

namespace operations {

namespace {

bool remove_content(int folder, uint64_t mount) {
    std::vector<std::string> names;
    if (mount_of(folder) != mount || !names_in_folder(folder, &names)) return false;
    bool removed = true;
    for (const std::string& name : names) removed &= remove_tree(folder, name.c_str());
    return removed;
}

// Opens a folder that is to be emptied, even if it was made read-only.
Descriptor open_to_empty(int parent, const char* name) {
    Descriptor folder = open_folder_at(parent, name);
    if (!folder && errno == EACCES && fchmodat(parent, name, 0700, 0) == 0) {
        folder = open_folder_at(parent, name);
    }
    if (folder && faccessat(folder.get(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
        fchmod(folder.get(), 0700);
    }
    return folder;
}

// For file systems without a rename that refuses taken names. A file gets its second name before it
// loses the first; for a folder the new name is looked up first, and a full folder is never
// replaced.
bool move_in_steps(int from_folder, const std::string& from, int to_folder, const std::string& to) {
    struct stat what;
    if (!look_at(from_folder, from.c_str(), &what)) return false;
    if (!S_ISDIR(what.st_mode)) {
        if (linkat(from_folder, from.c_str(), to_folder, to.c_str(), 0) == 0) {
            return unlinkat(from_folder, from.c_str(), 0) == 0;
        }
        if (errno != EPERM && errno != EOPNOTSUPP && errno != EMLINK) return false;
    }
    if (look_at(to_folder, to.c_str(), &what)) {
        errno = EEXIST;
        return false;
    }
    return errno == ENOENT && renameat(from_folder, from.c_str(), to_folder, to.c_str()) == 0;
}

// A network disk may do what it was asked to do and lose its answer. Keeps errno.
bool was_done_all_the_same(int from_folder, const std::string& from, int to_folder,
                           const std::string& to) {
    const int error = errno;
    struct stat what;
    const bool is_doubtful = error == EIO || error == ETIMEDOUT || error == EINTR ||
                             error == ESTALE || error == ENOTCONN || error == EREMOTEIO;
    const bool is_gone =
        is_doubtful && !look_at(from_folder, from.c_str(), &what) && means_missing(errno);
    const bool was_done = is_gone && look_at(to_folder, to.c_str(), &what);
    errno = error;
    return was_done;
}

}  // namespace

Descriptor open_folder_at(int parent, const char* name) {
    return Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool names_in_folder(int folder, std::vector<std::string>* names) {
    alignas(dirent64) thread_local char buffer[32 * 1024];
    if (lseek(folder, 0, SEEK_SET) < 0) return false;
    for (;;) {
        const ssize_t size = getdents64(folder, buffer, sizeof buffer);
        if (size <= 0) return size == 0;
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
                names->emplace_back(entry->d_name);
            }
        }
    }
}

bool look_at(int folder, const char* name, struct stat* what) {
    return fstatat(folder, name, what, AT_SYMLINK_NOFOLLOW) == 0;
}

bool means_missing(int error) { return error == ENOENT || error == ENOTDIR; }

std::string path_of_folder(int folder) {
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(folder);
    const ssize_t size = readlink(link.c_str(), path, sizeof path);
    if (size < 0) return {};
    const std::string found(path, static_cast<size_t>(size));
    // The path of a removed or unreachable folder leads elsewhere.
    struct stat here, there;
    if (fstat(folder, &here) != 0 || stat(found.c_str(), &there) != 0) return {};
    if (here.st_ino == there.st_ino && here.st_dev == there.st_dev && found[0] == '/') return found;
    errno = ENOENT;
    return {};
}

uint64_t mount_of(int file) {
    struct statx what;
    if (statx(file, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_MNT_ID, &what) != 0) return 0;
    if (what.stx_mask & STATX_MNT_ID) return what.stx_mnt_id + 1;
    return (uint64_t{what.stx_dev_major} << 32 | what.stx_dev_minor) + 1;
}

bool move_free(int from_folder, const std::string& from, int to_folder, const std::string& to) {
    if (renameat2(from_folder, from.c_str(), to_folder, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno == EINVAL) return move_in_steps(from_folder, from, to_folder, to);
    return was_done_all_the_same(from_folder, from, to_folder, to);
}

bool remove_tree(int parent, const char* name) {
    if (unlinkat(parent, name, 0) == 0 || errno == ENOENT) return true;
    const uint64_t mount = mount_of(parent);
    const Descriptor folder = mount != 0 ? open_to_empty(parent, name) : Descriptor();
    if (!folder || !remove_content(folder.get(), mount)) return false;
    return unlinkat(parent, name, AT_REMOVEDIR) == 0;
}

bool make_folders(const std::string& path) {
    if (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return true;
    const std::string parent = parent_of(path);
    if (errno != ENOENT || parent == path || !make_folders(parent)) return false;
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST;
}

std::string parent_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string name_in_path(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace operations
