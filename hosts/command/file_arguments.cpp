#include "command/file_arguments.h"

#include <host/text.h>

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "corefoundation/silent_disks.h"
#include "file_steps/visible_text.h"

using operations::in_quotes;

namespace fs = std::filesystem;

namespace {

// The file system resolves "..", so links before it are followed.
fs::path absolute_path(const fs::path& given) {
    fs::path path = fs::absolute(given);
    const fs::path last = path.filename();
    const bool climbs = std::find(path.begin(), path.end(), "..") != path.end();
    if (climbs && (last == ".." || last == "." || last.empty())) return fs::canonical(path);
    if (climbs) return fs::canonical(path.parent_path()) / last;
    path = path.lexically_normal();
    return path.has_filename() || path == path.root_path() ? path : path.parent_path();
}

// Throws when the file does not exist or cannot be reached, as nothing can by a relative name once
// the current folder has been removed.
std::string resolved(const std::string& file) {
    const fs::path whole = fs::absolute(file).lexically_normal();
    // A file whose disk does not answer is taken as it is named.
    if (::files::is_silent_entry(whole)) return whole.has_filename() ? whole : whole.parent_path();
    struct stat ignored;
    if (lstat(file.c_str(), &ignored) != 0) {
        throw fs::filesystem_error(file, {errno, std::generic_category()});
    }
    return absolute_path(file);
}

}  // namespace

bool resolve_files(std::vector<std::string>* files, std::string* problem) {
    for (std::string& file : *files) {
        try {
            file = resolved(file);
        } catch (const fs::filesystem_error& error) {
            const std::string reason = error_text(error.code().value());
            *problem = translated("cannot find %s: %s", {in_quotes(file), reason});
            return false;
        }
    }
    return true;
}
