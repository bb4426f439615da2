#include "command/private_folder.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>

#include "command/exit_signals.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* prefix = "delvio.";
constexpr const char* random_part = "XXXXXX";
// The file gets this name once it is locked, and stays locked as long as its process lives.
constexpr const char* file_name = "authority";
constexpr const char* unlocked_name = "new";
constexpr time_t seconds_to_begin = 60;

// The file, open and locked until the process ends; -1 on failure.
int create_locked(const std::string& file) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

bool has_our_name(const std::string& name) {
    return name.rfind(prefix, 0) == 0 && name.size() == strlen(prefix) + strlen(random_part);
}

// Opens a folder of this user that nobody else may enter; -1 for any other.
int open_own_folder(const char* path, struct stat* status) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (folder < 0) return -1;
    const bool own = fstat(folder, status) == 0 && status->st_uid == geteuid() &&
                     (status->st_mode & 0777) == 0700;
    if (own) return folder;
    close(folder);
    return -1;
}

// Whether no process holds the file any more. A folder without the file counts as left behind after
// a while.
bool is_left(int folder, const struct stat& status) {
    const int file = openat(folder, file_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return time(nullptr) - status.st_mtime > seconds_to_begin;
    const bool left = flock(file, LOCK_EX | LOCK_NB) == 0;
    close(file);
    return left;
}

void remove_if_left(const char* path) {
    struct stat status;
    const int folder = open_own_folder(path, &status);
    if (folder < 0) return;
    if (is_left(folder, status)) {
        unlinkat(folder, file_name, 0);
        unlinkat(folder, unlocked_name, 0);
        rmdir(path);
    }
    close(folder);
}

bool write_and_name(int file, const std::string& bytes, const std::string& from,
                    const std::string& to) {
    const auto size = static_cast<ssize_t>(bytes.size());
    return size > 0 && write(file, bytes.data(), bytes.size()) == size &&
           rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

std::string write_into_private_folder(const std::string& bytes) {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    std::string folder = (parent / (std::string(prefix) + random_part)).string();
    if (error || !mkdtemp(folder.data())) return {};
    const std::string named = folder + "/" + file_name, unlocked = folder + "/" + unlocked_name;
    set_file_to_remove(named, folder);
    const int file = create_locked(unlocked);
    if (file >= 0 && write_and_name(file, bytes, unlocked, named)) return named;
    unlink(unlocked.c_str());
    return {};
}

void remove_left_private_folders() {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error) return;
    fs::directory_iterator entries(parent, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        const fs::path& path = entries->path();
        if (has_our_name(path.filename().string())) remove_if_left(path.c_str());
    }
}
