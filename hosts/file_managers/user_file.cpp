#include "file_managers/user_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr off_t largest_file = 1 << 20;
constexpr mode_t executable_bits = 0111;

bool fail(std::string* problem, const std::string& path, const std::string& reason) {
    *problem = "cannot change " + path + ": " + reason + "; it was left as it is";
    return false;
}

bool fail_by_number(std::string* problem, const std::string& path) {
    return fail(problem, path, strerror(errno));
}

bool read_all(int file, std::string* text) {
    char block[16384];
    for (;;) {
        const ssize_t count = read(file, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count == 0;
        text->append(block, static_cast<size_t>(count));
    }
}

bool write_all(int file, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(file, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<size_t>(count);
    }
    return true;
}

mode_t users_mask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// Gives the new file the owner and the permissions of the old one, or `mode` if there is none.
bool set_mode(int file, const std::string& target, mode_t mode) {
    struct stat before;
    if (stat(target.c_str(), &before) != 0) return fchmod(file, mode & ~users_mask()) == 0;
    // Only the superuser may give files away; everybody else owns the old file anyway.
    if (fchown(file, before.st_uid, before.st_gid) != 0 && before.st_uid != geteuid()) return false;
    return fchmod(file, (before.st_mode & 07777) | (mode & executable_bits)) == 0;
}

}  // namespace

bool read_user_file(const std::string& path, FileText* text, std::string* problem) {
    text->reset();
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        return errno == ENOENT || fail_by_number(problem, path);
    }
    if (stat(path.c_str(), &status) != 0) {
        return fail(problem, path, "it is a link that leads nowhere");
    }
    if (!S_ISREG(status.st_mode)) return fail(problem, path, "it is no file");
    if (status.st_size > largest_file) return fail(problem, path, "it is too large");
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return fail_by_number(problem, path);
    text->emplace();
    const bool is_read = read_all(file, &**text);
    close(file);
    return is_read || fail_by_number(problem, path);
}

bool write_user_file(const std::string& path, const std::string& text, mode_t mode,
                     std::string* problem) {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(path, error))) {
        fs::create_directories(fs::path(path).parent_path(), error);
        if (error) return fail(problem, path, error.message());
    } else if (access(path.c_str(), W_OK) != 0) {
        return fail_by_number(problem, path);
    }
    const std::string target = fs::weakly_canonical(path, error);
    if (error) return fail(problem, path, error.message());
    std::string temporary = target + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) return fail_by_number(problem, path);
    bool done = set_mode(file, target, mode) && write_all(file, text) && fsync(file) == 0;
    done = close(file) == 0 && done;
    done = done && rename(temporary.c_str(), target.c_str()) == 0;
    if (done) return true;
    fail_by_number(problem, path);
    unlink(temporary.c_str());
    return false;
}

bool remove_user_file(const std::string& path, int folders, std::string* problem) {
    if (unlink(path.c_str()) != 0) return fail_by_number(problem, path);
    fs::path folder = fs::path(path).parent_path();
    for (; folders > 0 && rmdir(folder.c_str()) == 0; folders--) folder = folder.parent_path();
    return true;
}

int count_missing_folders(const std::string& path) {
    std::error_code error;
    int count = 0;
    for (fs::path folder = fs::path(path).parent_path(); !fs::exists(folder, error) && count < 20;
         folder = folder.parent_path()) {
        count++;
    }
    return count;
}
