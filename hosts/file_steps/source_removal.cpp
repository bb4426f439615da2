// The second half of a move to another file system: the copy is checked, the source removed.
#include <host/text.h>

#include <errno.h>
#include <fcntl.h>

#include "file_steps/file_data.h"
#include "file_steps/folder.h"
#include "file_steps/tree_copy.h"
#include "file_steps/visible_text.h"

namespace operations {

namespace {

std::string changed_line(const Place& source) {
    return translated("%s was changed while it was being moved", {quoted_name(source.path)});
}

}  // namespace

bool TreeCopy::check(const Place& source, const Place& target) {
    struct stat what, copied;
    if (!look_at(source.folder, source.name.c_str(), &what) || !is_as_remembered(what, false)) {
        return work_.fail(changed_line(source));
    }
    if (!look_at(target.folder, target.name.c_str(), &copied) ||
        (copied.st_mode & S_IFMT) != (what.st_mode & S_IFMT)) {
        return work_.fail(translated("the copy of %s is not there", {quoted_name(source.path)}));
    }
    if (S_ISDIR(what.st_mode)) return check_folder(source, target);
    return !S_ISREG(what.st_mode) || check_file(source, target);
}

bool TreeCopy::check_file(const Place& source, const Place& target) {
    const int flags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC;
    const Descriptor ours(openat(source.folder, source.name.c_str(), flags));
    if (!ours) return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    // The copy's permissions may keep its own owner out.
    Descriptor copied(openat(target.folder, target.name.c_str(), flags));
    if (!copied)
        return work_.fail(to_translate("cannot read the copy of %s: %s"), source.path, errno);
    const auto piece = [&](uint64_t) { return work_.advance(source.path, 0, 0); };
    const int error = compare_data(ours.get(), copied.get(), piece);
    if (error == EBADMSG) {
        return work_.fail(
            translated("the copy of %s differs from the original", {quoted_name(source.path)}));
    }
    return error == 0 || work_.fail(to_translate("cannot compare %s: %s"), source.path, error);
}

bool TreeCopy::check_folder(const Place& source, const Place& target) {
    const Descriptor ours = open_folder_at(source.folder, source.name.c_str());
    const Descriptor copied = open_folder_at(target.folder, target.name.c_str());
    std::vector<std::string> names;
    if (!ours || !copied || !names_in_folder(ours.get(), &names)) {
        return work_.fail(to_translate("cannot read %s: %s"), source.path, errno);
    }
    for (const std::string& name : names) {
        const Place entry = {ours.get(), name, source.path + "/" + name};
        if (!check(entry, {copied.get(), name, target.path + "/" + name})) return false;
    }
    return true;
}

bool TreeCopy::remove(const Place& source) {
    struct stat what;
    if (!look_at(source.folder, source.name.c_str(), &what)) {
        return errno == ENOENT ||
               work_.fail(to_translate("cannot remove %s: %s"), source.path, errno);
    }
    if (!is_as_remembered(what, true)) return work_.fail(changed_line(source));
    if (S_ISDIR(what.st_mode)) return remove_folder(source);
    if (unlinkat(source.folder, source.name.c_str(), 0) == 0) return true;
    return work_.fail(to_translate("cannot remove %s: %s"), source.path, errno);
}

bool TreeCopy::remove_folder(const Place& source) {
    std::vector<std::string> names;
    {
        const Descriptor folder = open_folder_at(source.folder, source.name.c_str());
        if (!folder || !names_in_folder(folder.get(), &names)) {
            return work_.fail(to_translate("cannot remove %s: %s"), source.path, errno);
        }
        for (const std::string& name : names) {
            if (!remove({folder.get(), name, source.path + "/" + name})) return false;
        }
    }
    if (unlinkat(source.folder, source.name.c_str(), AT_REMOVEDIR) == 0) return true;
    return work_.fail(errno == ENOTEMPTY
                          ? changed_line(source)
                          : translated("cannot remove %s", {quoted_name(source.path)}));
}

}  // namespace operations
