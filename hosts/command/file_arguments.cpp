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

}  // namespace

bool resolve_files(std::vector<std::string>* files, std::string* problem) {
    for (std::string& file : *files) {
        struct stat ignored;
        const fs::path whole = fs::absolute(file).lexically_normal();
        // A file whose disk does not answer is taken as it is named.
        if (::files::is_silent_entry(whole)) {
            file = whole.has_filename() ? whole : whole.parent_path();
            continue;
        }
        if (lstat(file.c_str(), &ignored) != 0) {
            *problem = translated("cannot find %s: %s", {in_quotes(file), error_text(errno)});
            return false;
        }
        try {
            file = absolute_path(file).string();
        } catch (const std::exception& error) {
            *problem = translated("cannot find %s: %s", {in_quotes(file), error.what()});
            return false;
        }
    }
    return true;
}
