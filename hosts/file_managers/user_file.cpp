#include "file_managers/user_file.h"

#include <host/text.h>

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

void fail(std::string* problem, const std::string& path, const std::string& reason) {
    *problem = translated("cannot change %s: %s; it was left as it is", {path, reason});
}

Change failed_by_number(std::string* problem, const std::string& path) {
    fail(problem, path, error_text(errno));
    return Change::failed;
}

bool is_unreadable(std::string* problem, const std::string& path, const std::string& reason) {
    *problem = translated("cannot read %s: %s; it was left as it is", {path, reason});
    return false;
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

void remove_folders(const std::string& path, int count) {
    fs::path folder = fs::path(path).parent_path();
    for (; count > 0 && rmdir(folder.c_str()) == 0; count--) folder = folder.parent_path();
}

// The path of a new, empty file in the same folder; empty on failure.
std::string new_name_beside(const std::string& path) {
    std::string name = path + ".XXXXXX";
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) return {};
    close(file);
    return name;
}

bool holds(const std::string& path, const FileText& text) {
    FileText now;
    std::string unused;
    return read_user_file(path, &now, &unused) && now == text;
}

// Puts the new file, which holds `text`, in place of the one that holds `before`. If that has
// changed in the meantime, the two change places again, so that nothing of it is lost.
Change put_in_place(const std::string& made, const std::string& text, const std::string& target,
                    const FileText& before) {
    const auto rename_with = [&](unsigned flags) {
        return renameat2(AT_FDCWD, made.c_str(), AT_FDCWD, target.c_str(), flags) == 0;
    };
    if (rename_with(before ? RENAME_EXCHANGE : RENAME_NOREPLACE)) {
        if (!before) return Change::done;
        const bool is_same = holds(made, before);
        if (!is_same && !rename_with(RENAME_EXCHANGE)) return Change::failed;
        // A file that came between the two exchanges is newer than both.
        if (!is_same && !holds(made, text)) rename_with(RENAME_EXCHANGE);
        unlink(made.c_str());
        return is_same ? Change::done : Change::outdated;
    }
    if (errno == EEXIST || errno == ENOENT) return Change::outdated;
    if (errno != EINVAL && errno != ENOSYS) return Change::failed;
    // Some network file systems only know the plain call.
    if (!holds(target, before)) return Change::outdated;
    return rename(made.c_str(), target.c_str()) == 0 ? Change::done : Change::failed;
}

Change replace(const std::string& path, const FileText& before, const std::string& text,
               mode_t mode, std::string* problem) {
    std::error_code error;
    const std::string target = fs::weakly_canonical(path, error);
    if (error) {
        fail(problem, path, error.message());
        return Change::failed;
    }
    std::string made = target + ".XXXXXX";
    const int file = mkostemp(made.data(), O_CLOEXEC);
    if (file < 0) return failed_by_number(problem, path);
    bool done = set_mode(file, target, mode) && write_all(file, text) && fsync(file) == 0;
    done = close(file) == 0 && done;
    const Change change = done ? put_in_place(made, text, target, before) : Change::failed;
    if (change == Change::done) return change;
    if (change == Change::failed) failed_by_number(problem, path);
    unlink(made.c_str());
    return change;
}

}  // namespace

bool read_user_file(const std::string& path, FileText* text, std::string* problem) {
    text->reset();
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        return errno == ENOENT || is_unreadable(problem, path, error_text(errno));
    }
    if (stat(path.c_str(), &status) != 0) {
        return is_unreadable(problem, path, translated("it is a link that leads nowhere"));
    }
    if (!S_ISREG(status.st_mode)) return is_unreadable(problem, path, translated("it is no file"));
    if (status.st_size > largest_file)
        return is_unreadable(problem, path, translated("it is too large"));
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return is_unreadable(problem, path, error_text(errno));
    text->emplace();
    const bool is_read = read_all(file, &**text);
    close(file);
    return is_read || is_unreadable(problem, path, error_text(errno));
}

Change write_user_file(const std::string& path, const FileText& before, const std::string& text,
                       mode_t mode, std::string* problem) {
    const int missing = count_missing_folders(path);
    std::error_code error;
    if (!fs::exists(fs::symlink_status(path, error))) {
        fs::create_directories(fs::path(path).parent_path(), error);
        if (error) {
            fail(problem, path, error.message());
            remove_folders(path, missing);
            return Change::failed;
        }
    } else if (access(path.c_str(), W_OK) != 0) {
        return failed_by_number(problem, path);
    }
    const Change change = replace(path, before, text, mode, problem);
    if (change != Change::done) remove_folders(path, missing);
    return change;
}

Change remove_user_file(const std::string& path, const std::string& before, int folders,
                        std::string* problem) {
    const std::string aside = new_name_beside(path);
    if (aside.empty() || rename(path.c_str(), aside.c_str()) != 0) {
        failed_by_number(problem, path);
        if (!aside.empty()) unlink(aside.c_str());
        return Change::failed;
    }
    if (!holds(aside, before)) {
        // Unless there is a still newer file by now, which would have replaced this one.
        const bool is_back =
            renameat2(AT_FDCWD, aside.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0;
        if (!is_back && errno == EEXIST) unlink(aside.c_str());
        return Change::outdated;
    }
    if (unlink(aside.c_str()) != 0) return failed_by_number(problem, path);
    remove_folders(path, folders);
    return Change::done;
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
