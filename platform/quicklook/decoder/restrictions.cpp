#include "quicklook/decoder/restrictions.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace thumbnails {

namespace {

void limit(__rlimit_resource_t what, rlim_t most) {
    rlimit now;
    if (getrlimit(what, &now) != 0) return;
    const rlim_t limit = std::min(most, now.rlim_max);
    const rlimit wanted = {limit, limit};
    setrlimit(what, &wanted);
}

// What neither kind of process has a use for.
const int never[] = {
    SCMP_SYS(ptrace),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(unshare),
    SCMP_SYS(setns),
    SCMP_SYS(mount),
    SCMP_SYS(umount2),
    SCMP_SYS(pivot_root),
    SCMP_SYS(chroot),
    SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd),
    SCMP_SYS(keyctl),
    SCMP_SYS(add_key),
    SCMP_SYS(request_key),
    SCMP_SYS(io_uring_setup),
    SCMP_SYS(io_uring_enter),
    SCMP_SYS(io_uring_register),
    SCMP_SYS(open_by_handle_at),
    SCMP_SYS(open_tree),
    SCMP_SYS(move_mount),
    SCMP_SYS(fsopen),
    SCMP_SYS(kexec_load),
    SCMP_SYS(init_module),
    SCMP_SYS(finit_module),
    SCMP_SYS(delete_module),
    SCMP_SYS(memfd_secret),
    SCMP_SYS(socket),
    SCMP_SYS(connect),
    SCMP_SYS(bind),
    SCMP_SYS(listen),
    SCMP_SYS(accept),
    SCMP_SYS(accept4),
    SCMP_SYS(pidfd_getfd),
    SCMP_SYS(setpgid),
    SCMP_SYS(setsid),
};

// What a program may do and a decoder may not: start others, signal others, change files.
const int not_in_decoder[] = {
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    SCMP_SYS(fork),
    SCMP_SYS(vfork),
    SCMP_SYS(kill),
    SCMP_SYS(tkill),
    SCMP_SYS(socketpair),
    SCMP_SYS(creat),
    SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat),
    SCMP_SYS(mknod),
    SCMP_SYS(mknodat),
    SCMP_SYS(unlink),
    SCMP_SYS(unlinkat),
    SCMP_SYS(rmdir),
    SCMP_SYS(rename),
    SCMP_SYS(renameat),
    SCMP_SYS(renameat2),
    SCMP_SYS(link),
    SCMP_SYS(linkat),
    SCMP_SYS(symlink),
    SCMP_SYS(symlinkat),
    SCMP_SYS(truncate),
    SCMP_SYS(ftruncate),
    SCMP_SYS(chmod),
    SCMP_SYS(fchmod),
    SCMP_SYS(fchmodat),
    SCMP_SYS(chown),
    SCMP_SYS(fchown),
    SCMP_SYS(lchown),
    SCMP_SYS(fchownat),
    SCMP_SYS(setxattr),
    SCMP_SYS(lsetxattr),
    SCMP_SYS(fsetxattr),
    SCMP_SYS(removexattr),
    SCMP_SYS(lremovexattr),
    SCMP_SYS(fremovexattr),
    SCMP_SYS(utimensat),
    SCMP_SYS(utime),
    SCMP_SYS(utimes),
    SCMP_SYS(futimesat),
    SCMP_SYS(fallocate),
    SCMP_SYS(inotify_add_watch),
};

class Filter {
  public:
    Filter() : context_(seccomp_init(SCMP_ACT_ALLOW)) {}
    ~Filter() {
        if (context_) seccomp_release(context_);
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    // Calls of another architecture's numbering are refused as a whole by default.
    void deny(int call, int error = EPERM) {
        seccomp_rule_add(context_, SCMP_ACT_ERRNO(static_cast<uint16_t>(error)), call, 0);
    }
    void deny_flag(int call, unsigned argument, uint64_t mask, uint64_t value, int error = EPERM) {
        const scmp_arg_cmp condition = {argument, SCMP_CMP_MASKED_EQ, mask, value};
        seccomp_rule_add_array(context_, SCMP_ACT_ERRNO(static_cast<uint16_t>(error)), call, 1,
                               &condition);
    }
    bool load() { return context_ && seccomp_load(context_) == 0; }
    bool is_made() const { return context_ != nullptr; }

  private:
    scmp_filter_ctx context_;
};

void deny_writing(Filter& filter) {
    for (const uint64_t flag : {O_WRONLY, O_RDWR, O_CREAT, O_TRUNC}) {
        filter.deny_flag(SCMP_SYS(open), 1, flag, flag, EACCES);
        filter.deny_flag(SCMP_SYS(openat), 2, flag, flag, EACCES);
    }
    filter.deny(SCMP_SYS(openat2), ENOSYS);
}

bool filter_calls(bool is_decoder) {
    Filter filter;
    if (!filter.is_made()) return false;
    for (const int call : never) filter.deny(call);
    filter.deny_flag(SCMP_SYS(ioctl), 1, 0xffffffff, 0x5412 /* TIOCSTI */);
    if (is_decoder) {
        for (const int call : not_in_decoder) filter.deny(call);
        deny_writing(filter);
        // Threads, but no processes; clone3 hides its flags, and libc then falls back to clone.
        filter.deny(SCMP_SYS(clone3), ENOSYS);
        filter.deny_flag(SCMP_SYS(clone), 0, CLONE_THREAD, 0);
    } else {
        filter.deny_flag(SCMP_SYS(clone), 0, CLONE_NEWUSER, CLONE_NEWUSER);
        filter.deny(SCMP_SYS(clone3), ENOSYS);
    }
    return filter.load();
}

const uint64_t reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
const uint64_t running = reading | LANDLOCK_ACCESS_FS_EXECUTE;
const uint64_t everything =
    running | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
    LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
    LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
    LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
const uint64_t for_files =
    LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_EXECUTE;

void allow(int rules, const char* path, uint64_t access) {
    const int place = open(path, O_PATH | O_CLOEXEC);
    if (place < 0) return;
    struct stat status;
    if (fstat(place, &status) == 0 && !S_ISDIR(status.st_mode)) access &= for_files;
    const landlock_path_beneath_attr rule = {access, place};
    syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    close(place);
}

// Does nothing on kernels without Landlock.
void restrict_files(const Reach& reach) {
    const landlock_ruleset_attr attributes = {everything};
    const auto rules =
        static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (rules < 0) return;
    for (const char* folder : {"/usr", "/bin", "/lib", "/lib32", "/lib64", "/sbin", "/opt"}) {
        allow(rules, folder, running);
    }
    for (const char* folder : {"/etc", "/var/cache/fontconfig", "/sys/devices/system/cpu",
                               "/dev/urandom", "/dev/random", "/dev/zero"}) {
        allow(rules, folder, reading);
    }
    allow(rules, "/dev/null", reading | LANDLOCK_ACCESS_FS_WRITE_FILE);
    for (const std::string& place : reach.readable) allow(rules, place.c_str(), running);
    if (!reach.writable.empty()) allow(rules, reach.writable.c_str(), everything);
    syscall(SYS_landlock_restrict_self, rules, 0);
    close(rules);
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

bool restrict_decoder() {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    restrict_files({});
    return filter_calls(true);
}

bool restrict_program(const Reach& reach) {
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    restrict_files(reach);
    return filter_calls(false);
}

}  // namespace thumbnails
