#include "carbon/finder_information.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include "carbon/file_references.h"
#include "carbon/hidden_lists.h"
#include "corefoundation/silent_disks.h"
#include "desktop/moments.h"

namespace files {

namespace {

const char attribute[] = "user.com.apple.FinderInfo";

// The last file system that said that it keeps no attributes. It is not asked again for a while.
struct Incapable {
    uint32_t major, minor;
    int64_t until;
} incapable = {};

// User attributes exist for plain files and folders only.
bool may_have_attributes(const File& file) {
    return (S_ISREG(file.mode) || S_ISDIR(file.mode)) &&
           !keeps_no_attributes(file.device_major, file.device_minor, file.seen_at);
}

void read_attribute(File& file) {
    const bool told = read_finder_information(file.path.c_str(), &file.finder_information);
    if (!told && errno == EOPNOTSUPP) {
        incapable = {file.device_major, file.device_minor, file.seen_at + 10 * one_moment};
    }
}

const uint16_t invisible_flag = 0x4000;

}  // namespace

bool keeps_no_attributes(uint32_t device_major, uint32_t device_minor, int64_t now) {
    return incapable.until > now && incapable.major == device_major &&
           incapable.minor == device_minor;
}

bool read_finder_information(const char* path, FinderInformation* information) {
    const ssize_t size = lgetxattr(path, attribute, information->bytes, sizeof information->bytes);
    if (size == sizeof information->bytes) return true;
    memset(information->bytes, 0, sizeof information->bytes);
    return size >= 0 || errno == ENODATA;
}

const FinderInformation& finder_information(File& file) {
    if (file.knows_finder_information) return file.finder_information;
    if (may_have_attributes(file))
        read_attribute(file);
    else
        memset(file.finder_information.bytes, 0, sizeof file.finder_information.bytes);
    file.knows_finder_information = true;
    return file.finder_information;
}

bool is_invisible(File& file) {
    if (!file.knows_invisible) {
        file.invisible =
            (finder_information(file).flags() & invisible_flag) || is_listed_hidden(file);
        file.knows_invisible = true;
    }
    return file.invisible;
}

bool is_hidden(const std::string& path) {
    const size_t slash = path.find_last_not_of('/') == std::string::npos
                             ? std::string::npos
                             : path.rfind('/', path.find_last_not_of('/'));
    if (slash == std::string::npos) return false;
    File file = {};
    file.path = path.substr(0, path.find_last_not_of('/') + 1);
    file.name_offset = static_cast<uint32_t>(slash) + 1;
    if (file.name()[0] == '.') return true;
    struct stat status;
    if (is_silent_entry(file.path) || lstat(file.path.c_str(), &status) != 0) return false;
    file.mode = status.st_mode;
    file.device_major = major(status.st_dev);
    file.device_minor = minor(status.st_dev);
    file.seen_at = milliseconds_now();
    return is_invisible(file);
}

}  // namespace files
