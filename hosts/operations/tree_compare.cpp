#include "operations/tree_compare.h"

#include <fcntl.h>
#include <limits.h>

#include "file_steps/file_data.h"
#include "file_steps/folder.h"

namespace operations {

namespace {

bool is_later(const timespec& one, const timespec& other) {
    return one.tv_sec != other.tv_sec ? one.tv_sec > other.tv_sec : one.tv_nsec > other.tv_nsec;
}

bool is_same(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// If a linked file gains or loses another name, that changes the file but not its bytes.
bool is_later(const struct stat& what, const CopyState& copy) {
    const bool by_bytes = copy.linked && !S_ISDIR(what.st_mode);
    return is_later(by_bytes ? what.st_mtim : what.st_ctim, copy.changed);
}

bool is_changed_inside(int parent, const char* name, const CopyState& copy, int depth) {
    const Descriptor folder = open_folder_at(parent, name);
    std::vector<std::string> names;
    if (!folder || depth > deepest_folder || !names_in_folder(folder.get(), &names)) return true;
    for (const std::string& entry : names) {
        struct stat what;
        if (!look_at(folder.get(), entry.c_str(), &what) || is_later(what, copy)) return true;
        if (!S_ISDIR(what.st_mode)) continue;
        if (is_changed_inside(folder.get(), entry.c_str(), copy, depth + 1)) return true;
    }
    return false;
}

std::string text_of_link(int folder, const char* name) {
    char text[PATH_MAX];
    const ssize_t size = readlinkat(folder, name, text, sizeof text);
    return size < 0 ? "" : std::string(text, static_cast<size_t>(size));
}

bool has_same_bytes(int one_folder, const char* one, int other_folder, const char* other) {
    const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    const Descriptor ours(openat(one_folder, one, flags));
    const Descriptor theirs(openat(other_folder, other, flags));
    const auto go_on = [](uint64_t) { return true; };
    return ours && theirs && compare_data(ours.get(), theirs.get(), go_on) == 0;
}

bool is_rest_of(int rest_folder, const char* rest, int whole_folder, const char* whole, int depth) {
    struct stat left, all;
    if (!look_at(rest_folder, rest, &left) || !look_at(whole_folder, whole, &all)) return false;
    if ((left.st_mode & S_IFMT) != (all.st_mode & S_IFMT)) return false;
    if (S_ISLNK(left.st_mode)) {
        return text_of_link(rest_folder, rest) == text_of_link(whole_folder, whole);
    }
    if (S_ISREG(left.st_mode)) {
        // Some file systems do not keep times exactly.
        return left.st_size == all.st_size &&
               (is_same(left.st_mtim, all.st_mtim) ||
                has_same_bytes(rest_folder, rest, whole_folder, whole));
    }
    if (!S_ISDIR(left.st_mode)) return true;
    const Descriptor here = open_folder_at(rest_folder, rest),
                     there = open_folder_at(whole_folder, whole);
    std::vector<std::string> names;
    if (!here || !there || depth > deepest_folder || !names_in_folder(here.get(), &names))
        return false;
    for (const std::string& name : names) {
        if (!is_rest_of(here.get(), name.c_str(), there.get(), name.c_str(), depth + 1)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool is_changed(int folder, const char* name, const CopyState& copy) {
    struct stat what;
    if (!look_at(folder, name, &what) || what.st_ino != copy.inode) return true;
    // Getting its name has changed the copy, too, but neither its bytes nor its content.
    if (!is_same(what.st_mtim, copy.modified)) return true;
    if (!S_ISDIR(what.st_mode)) return what.st_size != copy.size;
    return is_changed_inside(folder, name, copy, 1);
}

bool is_remainder_of(int rest_folder, const char* rest, int whole_folder, const char* whole) {
    return is_rest_of(rest_folder, rest, whole_folder, whole, 1);
}

}  // namespace operations
