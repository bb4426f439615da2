#include "file_steps/tree_copy.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>

#include "file_steps/attributes.h"
#include "file_steps/file_data.h"
#include "file_steps/folder.h"
#include "file_steps/visible_text.h"

namespace operations {

namespace {

constexpr int tries = 3;
constexpr size_t synced_one_by_one = 8;

bool is_same(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

bool is_same(const struct stat& one, const struct stat& other) {
    return one.st_size == other.st_size && is_same(one.st_mtim, other.st_mtim) &&
           is_same(one.st_ctim, other.st_ctim);
}

Place inside(int folder, const Place& place, const std::string& name) {
    return {folder, name, place.path + "/" + name};
}

Descriptor open_file(const Place& place) {
    // If a FIFO has taken the name, opening does not wait for its other end.
    const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return Descriptor(openat(place.folder, place.name.c_str(), flags));
}

}  // namespace

TreeCopy::TreeCopy(Work& work, int destination, const std::string& prefix, bool for_move)
    : work_(work),
      destination_(destination),
      prefix_(prefix),
      for_move_(for_move),
      inherits_(passes_access_list_on(destination)) {
    struct stat what;
    if (fstat(destination, &what) == 0) destination_identity_ = {what.st_dev, what.st_ino};
}

bool TreeCopy::finish() {
    bool finished = true;
    for (const std::string& name : made_) {
        const bool is_gone = unlinkat(destination_, name.c_str(), 0) == 0 || errno == ENOENT;
        finished = finished && is_gone;
    }
    made_.clear();
    return finished;
}

bool TreeCopy::copy(const Place& source, const Place& target) {
    struct stat what;
    if (!look_at(source.folder, source.name.c_str(), &what)) {
        return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    }
    return copy_by_kind(source, target, what) && work_.advance(source.path, 1, 0);
}

bool TreeCopy::copy_by_kind(const Place& source, const Place& target, const struct stat& what) {
    if (what.st_nlink > 1 && !S_ISDIR(what.st_mode) && link_again(target, what)) return true;
    if (S_ISDIR(what.st_mode)) return copy_folder(source, target);
    const bool copied = S_ISREG(what.st_mode)   ? copy_file(source, target)
                        : S_ISLNK(what.st_mode) ? copy_link(source, target, what)
                                                : copy_node(source, target, what);
    if (copied && what.st_nlink > 1) keep_link(target, what);
    return copied;
}

// Makes another name (a hard link) of a file that was copied before.
bool TreeCopy::link_again(const Place& target, const struct stat& what) {
    const auto known = link_names_.find({what.st_dev, what.st_ino});
    if (known == link_names_.end()) return false;
    if (linkat(destination_, known->second.c_str(), target.folder, target.name.c_str(), 0) != 0) {
        return false;
    }
    remember(what);
    return linked_ = true;
}

// Where the file system has no hard links, each name gets its own copy.
void TreeCopy::keep_link(const Place& target, const struct stat& what) {
    const std::string name = prefix_ + "link" + std::to_string(link_names_.size());
    const bool linked =
        linkat(target.folder, target.name.c_str(), destination_, name.c_str(), 0) == 0;
    if (!linked && (errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK)) return;
    // A disk that reports an error may still have made the link.
    made_.push_back(name);
    if (!linked) return;
    link_names_[{what.st_dev, what.st_ino}] = name;
    linked_ = true;
}

bool TreeCopy::copy_file(const Place& source, const Place& target) {
    for (int left = tries; left > 0; left--) {
        bool changed = false;
        if (copy_once(source, target, &changed)) return true;
        if (!changed) return false;
        unlinkat(target.folder, target.name.c_str(), 0);
    }
    return work_.fail(translated("%s was changed while it was read", {quoted_name(source.path)}));
}

bool TreeCopy::copy_once(const Place& source, const Place& target, bool* changed) {
    const Descriptor from = open_file(source);
    struct stat what, after;
    if (!from || fstat(from.get(), &what) != 0) {
        return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    }
    if (!S_ISREG(what.st_mode)) return !(*changed = true);
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    Descriptor to(openat(target.folder, target.name.c_str(), flags, 0600));
    if (!to) return work_.fail(to_translate("cannot write %s: %s"), source.path, errno);
    forget_inherited(to.get(), target);
    if (!copy_bytes(from.get(), to.get(), what, source.path, changed)) return false;
    if (!keep_attributes(from.get(), to.get(), what, source.path, work_)) return false;
    if (fstat(from.get(), &after) != 0 || !is_same(what, after)) return !(*changed = true);
    remember(what);
    wrote(to.get());
    return to.close() || work_.fail(to_translate("cannot write %s: %s"), source.path, errno);
}

bool TreeCopy::copy_bytes(int from, int to, const struct stat& what, const std::string& path,
                          bool* changed) {
    const auto piece = [&](uint64_t size) { return work_.advance(path, 0, size); };
    const int error = copy_data(from, to, static_cast<uint64_t>(what.st_size),
                                static_cast<uint64_t>(what.st_blocks), piece);
    if (error == 0) return true;
    *changed = error == ESTALE;
    return !*changed && work_.fail(to_translate("cannot copy %s: %s"), path, error);
}

bool TreeCopy::copy_folder(const Place& source, const Place& target) {
    const Descriptor from = open_folder_at(source.folder, source.name.c_str());
    struct stat before, after;
    if (!from || fstat(from.get(), &before) != 0) {
        return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    }
    if (!may_enter(from.get(), before, source)) return false;
    if (mkdirat(target.folder, target.name.c_str(), 0700) != 0) {
        return work_.fail(to_translate("cannot make %s: %s"), source.path, errno);
    }
    const Descriptor to = open_folder_at(target.folder, target.name.c_str());
    if (!to) return work_.fail(to_translate("cannot write %s: %s"), source.path, errno);
    forget_inherited(to.get(), target);
    depth_++;
    const bool copied = copy_content(from.get(), to.get(), source, target);
    depth_--;
    if (!copied) return false;
    if (!keep_attributes(from.get(), to.get(), before, source.path, work_)) return false;
    if (for_move_ && (fstat(from.get(), &after) != 0 || !is_same(before, after))) {
        return work_.fail(
            translated("%s was changed while it was read", {quoted_name(source.path)}));
    }
    remember(before);
    wrote(to.get());
    return true;
}

bool TreeCopy::copy_content(int from, int to, const Place& source, const Place& target) {
    std::vector<std::string> names;
    if (!names_in_folder(from, &names))
        return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    for (const std::string& name : names) {
        const Place entry = inside(from, source, name);
        struct stat what;
        // An entry that is gone since is skipped; a move notices that the folder changed.
        if (!look_at(from, name.c_str(), &what) && errno == ENOENT) continue;
        if (!copy(entry, inside(to, target, name))) return false;
    }
    return true;
}

// If a disk is mounted twice, the destination may be in the source without being below its path.
bool TreeCopy::may_enter(int folder, const struct stat& what, const Place& source) {
    if (Identity(what.st_dev, what.st_ino) == destination_identity_) {
        return work_.fail(
            translated("a folder cannot be copied into itself, and the destination %s "
                       "is inside the one that is copied",
                       {quoted_name(source.path)}));
    }
    if (depth_ >= deepest_folder) {
        return work_.fail(translated("%s is nested more than %s folders deep",
                                     {quoted_name(source.path), std::to_string(deepest_folder)}));
    }
    return !for_move_ || may_remove_from(folder, source);
}

bool TreeCopy::may_remove_from(int folder, const Place& source) {
    if (mount_of(folder) != mount_of(source.folder)) {
        return work_.fail(translated("another volume is mounted at %s, which cannot be moved",
                                     {quoted_name(source.path)}));
    }
    if (faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) == 0) return true;
    return work_.fail(to_translate("cannot remove anything from %s: %s"), source.path, errno);
}

bool TreeCopy::copy_link(const Place& source, const Place& target, const struct stat& what) {
    char text[PATH_MAX];
    const ssize_t size = readlinkat(source.folder, source.name.c_str(), text, sizeof text - 1);
    if (size < 0) return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    text[size] = 0;
    if (symlinkat(text, target.folder, target.name.c_str()) != 0) {
        return work_.fail(to_translate("cannot make the link %s: %s"), source.path, errno);
    }
    remember(what);
    wrote();
    return keep_plain_attributes(target.folder, target.name.c_str(), what, source.path, work_);
}

bool TreeCopy::copy_node(const Place& source, const Place& target, const struct stat& what) {
    if (mknodat(target.folder, target.name.c_str(), what.st_mode & (S_IFMT | 0600), what.st_rdev) !=
        0) {
        const bool device = S_ISCHR(what.st_mode) || S_ISBLK(what.st_mode);
        return work_.fail(device ? to_translate("cannot make the device %s: %s")
                                 : to_translate("cannot make the FIFO or socket %s: %s"),
                          source.path, errno);
    }
    remember(what);
    wrote();
    return keep_plain_attributes(target.folder, target.name.c_str(), what, source.path, work_);
}

void TreeCopy::forget_inherited(int made, const Place& target) {
    if (inherits_ && target.folder == destination_) forget_access_lists(made);
}

// Up to a few files are synced one by one; for many, or files that cannot be opened, the whole file
// system is synced.
void TreeCopy::wrote(int file) {
    written_ = file < 0 ? synced_one_by_one + 1 : written_ + 1;
    if (written_ > synced_one_by_one) return unsynced_.clear();
    unsynced_.emplace_back(fcntl(file, F_DUPFD_CLOEXEC, 0));
    if (unsynced_.back()) return;
    written_ = synced_one_by_one + 1;
    unsynced_.clear();
}

bool TreeCopy::sync(const std::string& path) {
    bool synced = true;
    if (written_ > synced_one_by_one) synced = syncfs(destination_) == 0;
    for (const Descriptor& file : unsynced_) synced = synced && fsync(file.get()) == 0;
    unsynced_.clear();
    written_ = 0;
    return synced || work_.fail(to_translate("cannot write %s: %s"), path, errno);
}

void TreeCopy::remember(const struct stat& what) {
    if (!for_move_) return;
    const bool several = what.st_nlink > 1 && !S_ISDIR(what.st_mode);
    stamps_[{what.st_dev, what.st_ino}] = {what.st_size, what.st_mtim, what.st_ctim, several};
}

bool TreeCopy::is_as_remembered(const struct stat& what, bool removing) const {
    const auto known = stamps_.find({what.st_dev, what.st_ino});
    if (known == stamps_.end()) return false;
    const Stamp& stamp = known->second;
    // Removing one of a file's names changes the state of its other names.
    const bool changes_itself = removing && stamp.has_several_names;
    return stamp.size == what.st_size && is_same(stamp.modified, what.st_mtim) &&
           (changes_itself || is_same(stamp.changed, what.st_ctim));
}

}  // namespace operations
