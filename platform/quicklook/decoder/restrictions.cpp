#include "quicklook/decoder/restrictions.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <signal.h>
#include <stdint.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

#include "quicklook/decoder/call_filter.h"

namespace thumbnails {

namespace {

void limit(__rlimit_resource_t what, rlim_t most) {
    rlimit now;
    if (getrlimit(what, &now) != 0) return;
    const rlim_t limit = std::min(most, now.rlim_max);
    const rlimit wanted = {limit, limit};
    setrlimit(what, &wanted);
}

// Rights that this system's headers may not know yet.
const uint64_t truncating = 1u << 14, device_control = 1u << 15;
const uint64_t binding_and_connecting = 3, sockets_and_signals = 3;

const uint64_t reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
const uint64_t running = reading | LANDLOCK_ACCESS_FS_EXECUTE;
const uint64_t everything =
    running | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
    LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
    LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
    LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
const uint64_t for_files =
    LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_EXECUTE;

// 0 on kernels without Landlock.
long landlock_version() {
    return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

// As many rules as the kernel supports.
struct Rules {
    uint64_t files, network, reach;
};

Rules rules_of(long version) {
    Rules rules = {everything, 0, 0};
    if (version >= 2) rules.files |= LANDLOCK_ACCESS_FS_REFER;
    if (version >= 3) rules.files |= truncating;
    if (version >= 4) rules.network = binding_and_connecting;
    if (version >= 5) rules.files |= device_control;
    if (version >= 6) rules.reach = sockets_and_signals;
    return rules;
}

class FileRules {
  public:
    FileRules() : rules_(rules_of(landlock_version())) {
        const size_t size = rules_.reach ? 24 : rules_.network ? 16 : 8;
        set_ = static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules_, size, 0));
    }
    ~FileRules() {
        if (set_ >= 0) close(set_);
    }
    FileRules(const FileRules&) = delete;
    FileRules& operator=(const FileRules&) = delete;

    void allow(const char* path, uint64_t access) {
        const int place = open(path, O_PATH | O_CLOEXEC);
        if (place < 0) return;
        struct stat status;
        if (fstat(place, &status) == 0 && !S_ISDIR(status.st_mode)) access &= for_files;
        const landlock_path_beneath_attr rule = {access & rules_.files, place};
        syscall(SYS_landlock_add_rule, set_, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        close(place);
    }
    bool apply() { return set_ >= 0 && syscall(SYS_landlock_restrict_self, set_, 0) == 0; }

  private:
    const Rules rules_;
    int set_;
};

void allow_system(FileRules& rules, uint64_t access) {
    for (const char* folder : {"/usr", "/bin", "/lib", "/lib32", "/lib64", "/sbin"}) {
        rules.allow(folder, access);
    }
    for (const char* place :
         {"/etc/fonts", "/etc/ld.so.cache", "/etc/alternatives", "/var/cache/fontconfig",
          "/sys/devices/system/cpu", "/dev/urandom", "/dev/random", "/dev/zero"}) {
        rules.allow(place, reading);
    }
    rules.allow("/dev/null", reading | LANDLOCK_ACCESS_FS_WRITE_FILE);
}

bool restrict_decoder_files() {
    FileRules rules;
    allow_system(rules, reading);
    return rules.apply();
}

bool restrict_program_files(const Reach& reach) {
    FileRules rules;
    allow_system(rules, running);
    for (const char* place : {"/etc", "/proc/cpuinfo", "/proc/meminfo", "/proc/stat",
                              "/proc/filesystems", "/proc/self"}) {
        rules.allow(place, reading);
    }
    rules.allow("/opt", running);
    for (const std::string& place : reach.readable) rules.allow(place.c_str(), running);
    if (!reach.writable.empty()) {
        rules.allow(reach.writable.c_str(), everything | truncating | LANDLOCK_ACCESS_FS_REFER);
    }
    return rules.apply();
}

}  // namespace

void limit_resources(size_t megabytes, unsigned processor_seconds, unsigned seconds) {
    limit(RLIMIT_AS, megabytes * 1024 * 1024);
    limit(RLIMIT_CPU, processor_seconds);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 64 * 1024 * 1024);
    limit(RLIMIT_NOFILE, 256);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    alarm(seconds);
}

bool restrict_decoder(bool caged) {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    return (restrict_decoder_files() || caged) && allow_decoder_calls();
}

bool restrict_program(const Reach& reach) {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    return (restrict_program_files(reach) || reach.caged) && allow_program_calls(reach.caged);
}

}  // namespace thumbnails
