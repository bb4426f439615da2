#include "file_steps/attributes.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <string_view>
#include <vector>

namespace operations {

namespace {

bool starts_with(std::string_view name, std::string_view prefix) {
    return name.substr(0, prefix.size()) == prefix;
}

bool is_access_list(std::string_view name) { return starts_with(name, "system.posix_acl_"); }

// The attribute names, each with its zero byte; empty when there are none or they cannot be read.
std::vector<char> list_attributes(int file) {
    char buffer[1024];
    const ssize_t size = flistxattr(file, buffer, sizeof buffer);
    if (size >= 0) return {buffer, buffer + size};
    if (errno != ERANGE) return {};
    std::vector<char> names(XATTR_LIST_MAX);
    const ssize_t long_size = flistxattr(file, names.data(), names.size());
    names.resize(long_size > 0 ? static_cast<size_t>(long_size) : 0);
    return names;
}

// Returns 0 or an error number.
int copy_attribute(int source, int target, const char* name) {
    const ssize_t size = fgetxattr(source, name, nullptr, 0);
    if (size < 0) return errno == ENODATA ? 0 : errno;
    std::vector<char> value(static_cast<size_t>(size) + 1);
    const ssize_t read = fgetxattr(source, name, value.data(), value.size());
    if (read < 0) return errno;
    return fsetxattr(target, name, value.data(), static_cast<size_t>(read), 0) == 0 ? 0 : errno;
}

bool keep_attribute(int source, int target, const char* name, const std::string& path, Work& work) {
    const int error = copy_attribute(source, target, name);
    if (error == 0) return true;
    // A failure to copy one of the system's own labels does not matter.
    if (!starts_with(name, "user.") && !is_access_list(name)) return true;
    if (error == ENOSPC || error == EDQUOT || error == E2BIG) {
        return work.fail(to_translate("no room for the extended attributes of %s: %s"), path,
                         error);
    }
    work.remark(translated("the destination cannot keep extended attributes or access lists"));
    return true;
}

bool keep_listed(const std::vector<char>& names, bool access_lists, int source, int target,
                 const std::string& path, Work& work) {
    for (size_t at = 0; at < names.size(); at += strlen(names.data() + at) + 1) {
        const char* name = names.data() + at;
        if (is_access_list(name) != access_lists) continue;
        if (!keep_attribute(source, target, name, path, work)) return false;
    }
    return true;
}

// If the owner could not be kept, the copy must not keep the set-user and set-group bits.
mode_t mode_for(bool owner_kept, mode_t mode) { return mode & (owner_kept ? 07777 : 01777); }

}  // namespace

bool keep_attributes(int source, int target, const struct stat& what, const std::string& path,
                     Work& work) {
    bool owner_kept = fchown(target, what.st_uid, what.st_gid) == 0;
    if (!owner_kept && fchown(target, static_cast<uid_t>(-1), what.st_gid) == 0) {
        owner_kept = what.st_uid == geteuid();
    }
    const std::vector<char> names = list_attributes(source);
    if (!keep_listed(names, false, source, target, path, work)) return false;
    if (fchmod(target, mode_for(owner_kept, what.st_mode)) != 0 && errno != EPERM) {
        return work.fail(to_translate("cannot set the permissions of %s: %s"), path, errno);
    }
    if (!keep_listed(names, true, source, target, path, work)) return false;
    const timespec times[2] = {what.st_atim, what.st_mtim};
    if (futimens(target, times) != 0 && errno != EPERM) {
        return work.fail(to_translate("cannot set the times of %s: %s"), path, errno);
    }
    return true;
}

bool keep_plain_attributes(int folder, const char* name, const struct stat& what,
                           const std::string& path, Work& work) {
    const bool owner_kept =
        fchownat(folder, name, what.st_uid, what.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
    if (!S_ISLNK(what.st_mode)) fchmodat(folder, name, mode_for(owner_kept, what.st_mode), 0);
    const timespec times[2] = {what.st_atim, what.st_mtim};
    if (utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW) != 0 && errno != EPERM) {
        return work.fail(to_translate("cannot set the times of %s: %s"), path, errno);
    }
    return true;
}

bool passes_access_list_on(int folder) {
    return fgetxattr(folder, "system.posix_acl_default", nullptr, 0) > 0;
}

void forget_access_lists(int made) {
    fremovexattr(made, "system.posix_acl_default");
    fremovexattr(made, "system.posix_acl_access");
}

}  // namespace operations
