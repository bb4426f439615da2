#include <Carbon/Files.h>

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "carbon/file_references.h"

namespace {

using files::File;

struct Free {
    void operator()(char* text) const { free(text); }
};

// The path without links and dots; empty, with errno set, if it leads nowhere.
std::string real_path(const std::string& path) {
    const std::unique_ptr<char, Free> result(realpath(path.c_str(), nullptr));
    return result ? result.get() : std::string();
}

// True when the text names its file plainly: no "." or ".." and no doubled or last slash.
bool is_plain(const std::string& path) {
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        const std::string part = path.substr(start, end - start);
        if (part == "." || part == ".." || (part.empty() && start > 0)) return false;
        start = end + 1;
    }
    return true;
}

// The path that the text of a link in `file`'s folder stands for. The last component, when it is a
// name, is not followed.
std::string target_path(const File& file, const std::string& text) {
    const bool absolute = text[0] == '/';
    const std::string joined =
        absolute ? text : std::string(file.folder(), file.folder_length()) + text;
    if (is_plain(text)) return joined;

    const size_t last = joined.find_last_not_of('/');
    if (last == std::string::npos) return "/";
    const size_t slash = joined.rfind('/', last);
    const std::string name = joined.substr(slash + 1, last - slash);
    if (name == "." || name == "..") return real_path(joined);
    const std::string folder = real_path(joined.substr(0, slash + 1));
    if (folder.empty()) return folder;
    return folder == "/" ? folder + name : folder + "/" + name;
}

// What one link names, empty with errno set when there is none.
std::string read_link(const File& file) {
    char text[PATH_MAX];
    const ssize_t length = readlink(file.path.c_str(), text, sizeof text);
    if (length <= 0) return {};
    return target_path(file, std::string(text, static_cast<size_t>(length)));
}

// Whether the end of the chain at `path` exists, and what it is.
bool end_of_chain(const std::string& path, mode_t* mode) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return false;
    *mode = status.st_mode;
    return true;
}

// A reference to the target that still answers all questions from the look that made it.
OSErr refer_to(const std::string& target, FSRef* ref, mode_t* mode) {
    if (target.empty()) return files::error_from_errno(errno);
    const unsigned all = files::ITEM_INFO | files::DISPLAY_NAME | files::CATALOG_INFO | files::PATH;
    FSRef result;
    const OSErr error = files::make_reference(target.c_str(), target.size(), all, &result, mode);
    if (error != noErr) return error;
    if (S_ISLNK(*mode) && !end_of_chain(target, mode)) return files::error_from_errno(errno);
    *ref = result;
    return noErr;
}

}  // namespace

OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean resolveChains, Boolean* targetIsFolder,
                                       Boolean* wasAliased, unsigned long) {
    if (!targetIsFolder || !wasAliased) return paramErr;
    OSErr error;
    const File* file = files::file_for(ref, files::ALIAS, &error);
    if (!file) return error;

    *wasAliased = S_ISLNK(file->mode);
    *targetIsFolder = S_ISDIR(file->mode);
    if (!*wasAliased) return noErr;

    mode_t mode = 0;
    error = refer_to(resolveChains ? real_path(file->path) : read_link(*file), ref, &mode);
    *targetIsFolder = error == noErr && S_ISDIR(mode);
    return error;
}
