#include "desktop/open_failures.h"

#include <host/text.h>
#include <host/opening_files.h>

#include <errno.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "corefoundation/silent_disks.h"

namespace files {

namespace {

OpenFailureListener listener;
unsigned long openings;

std::string target_of(const std::string& link) {
    char target[PATH_MAX];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
}

// Why a path is not reached that exists, or that is a link leading nowhere.
std::string why_not_reached(const std::string& path, int error) {
    struct stat own;
    const bool is_link = lstat(path.c_str(), &own) == 0 && S_ISLNK(own.st_mode);
    if (!is_link) return error == ENOENT ? translated("it is no longer there") : error_text(error);
    if (error == ELOOP) return translated("it is a link that leads back to itself");
    const std::string target = target_of(path);
    if (error == ENOENT || error == ENOTDIR) {
        return translated("it is a link to %s, which is not there", {target});
    }
    return translated("it is a link to %s: %s", {target, error_text(error)});
}

}  // namespace

std::string why_not_openable(const std::string& path) {
    struct stat status;
    if (is_silent_target(path)) return translated("its disk does not respond");
    if (stat(path.c_str(), &status) != 0) return why_not_reached(path, errno);
    if (S_ISFIFO(status.st_mode))
        return translated("it is a pipe, which no program opens as a file");
    if (S_ISSOCK(status.st_mode))
        return translated("it is a socket, which no program opens as a file");
    return "";
}

void tell_open_failure(const std::string& file, const std::string& program,
                       const std::string& reason) {
    if (listener) listener(file.c_str(), program.c_str(), reason.c_str());
}

void count_opening() { openings++; }

}  // namespace files

void set_open_failure_listener(OpenFailureListener wanted) { files::listener = wanted; }

void report_open_failure(const char* file, const char* program, const char* reason) {
    files::tell_open_failure(file, program, reason);
}

unsigned long count_of_openings(void) { return files::openings; }
