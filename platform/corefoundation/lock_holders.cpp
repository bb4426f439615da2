#include "corefoundation/lock_holders.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace {

// The system counts a process's start in hundredths of a second, and its clock may be set.
const double slack = 2;

double seconds_of(const struct timespec& time) {
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

double seconds_now(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return seconds_of(now);
}

// Without a stream, which throws when the process ends between opening and reading.
std::string text_of(const std::string& path) {
    std::string text;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return text;
    char part[4096];
    for (ssize_t size; (size = read(file, part, sizeof part)) > 0;) {
        text.append(part, static_cast<size_t>(size));
    }
    close(file);
    return text;
}

// Seconds since the process began; negative for a process that has gone.
double age_of(const std::string& process) {
    const std::string text = text_of(process + "/stat");
    // The program's name, in parentheses, may hold anything.
    const size_t name_end = text.rfind(')');
    if (name_end == std::string::npos) return -slack;
    size_t at = name_end;
    for (int field = 2; field < 22 && at != std::string::npos; field++) at = text.find(' ', at + 1);
    if (at == std::string::npos) return -slack;
    const double start = strtod(text.c_str() + at, nullptr) / (double)sysconf(_SC_CLK_TCK);
    return seconds_now(CLOCK_BOOTTIME) - start;
}

// Delvio's programs hold the lock in their turn only.
bool uses_gnustep_without_delvio(const std::string& process) {
    const std::string maps = text_of(process + "/maps");
    return maps.find("libgnustep-base") != std::string::npos &&
           maps.find("libdelvio-platform") == std::string::npos;
}

bool has_our_home(const std::string& process) {
    const char* const home = getenv("HOME");
    const std::string variables = '\0' + text_of(process + "/environ");
    const size_t place = variables.find(std::string("\0HOME=", 6));
    if (!home || place == std::string::npos) return true;
    return strcmp(variables.c_str() + place + 6, home) == 0;
}

}  // namespace

bool may_be_held_by_another(const struct timespec& since) {
    const double age = seconds_now(CLOCK_REALTIME) - seconds_of(since);
    DIR* const processes = opendir("/proc");
    if (!processes) return true;
    bool may = false;
    while (const dirent* entry = may ? nullptr : readdir(processes)) {
        if (strspn(entry->d_name, "0123456789") != strlen(entry->d_name)) continue;
        if (std::to_string(getpid()) == entry->d_name) continue;
        const std::string process = std::string("/proc/") + entry->d_name;
        struct stat status;
        if (stat(process.c_str(), &status) != 0 || status.st_uid != geteuid()) continue;
        may = age_of(process) + slack >= age && uses_gnustep_without_delvio(process) &&
              has_our_home(process);
    }
    closedir(processes);
    return may;
}
