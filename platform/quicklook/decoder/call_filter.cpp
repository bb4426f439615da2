#include "quicklook/decoder/call_filter.h"

#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <stdint.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <initializer_list>

namespace thumbnails {

namespace {

// Memory, threads, clocks, signals within the process; reading; what is open already.
const int for_all[] = {
    SCMP_SYS(access),
    SCMP_SYS(arch_prctl),
    SCMP_SYS(brk),
    SCMP_SYS(clock_getres),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_nanosleep),
    SCMP_SYS(close),
    SCMP_SYS(close_range),
    SCMP_SYS(dup),
    SCMP_SYS(eventfd2),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(faccessat),
    SCMP_SYS(faccessat2),
    SCMP_SYS(fadvise64),
    SCMP_SYS(fstat),
    SCMP_SYS(fstatfs),
    SCMP_SYS(futex),
    SCMP_SYS(getcpu),
    SCMP_SYS(getcwd),
    SCMP_SYS(getdents64),
    SCMP_SYS(getegid),
    SCMP_SYS(geteuid),
    SCMP_SYS(getgid),
    SCMP_SYS(getpid),
    SCMP_SYS(getppid),
    SCMP_SYS(getrandom),
    SCMP_SYS(getrlimit),
    SCMP_SYS(getrusage),
    SCMP_SYS(gettid),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getuid),
    SCMP_SYS(lseek),
    SCMP_SYS(lstat),
    SCMP_SYS(madvise),
    SCMP_SYS(membarrier),
    SCMP_SYS(mmap),
    SCMP_SYS(mprotect),
    SCMP_SYS(mremap),
    SCMP_SYS(munmap),
    SCMP_SYS(nanosleep),
    SCMP_SYS(newfstatat),
    SCMP_SYS(pipe2),
    SCMP_SYS(poll),
    SCMP_SYS(ppoll),
    SCMP_SYS(pread64),
    SCMP_SYS(preadv),
    SCMP_SYS(read),
    SCMP_SYS(readahead),
    SCMP_SYS(readlink),
    SCMP_SYS(readlinkat),
    SCMP_SYS(readv),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(rseq),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(sched_yield),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(set_tid_address),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(stat),
    SCMP_SYS(statfs),
    SCMP_SYS(statx),
    SCMP_SYS(sysinfo),
    SCMP_SYS(time),
    SCMP_SYS(times),
    SCMP_SYS(uname),
    SCMP_SYS(write),
    SCMP_SYS(writev),
};

// Starting other programs and waiting for them; files, as far as the rules for files allow.
const int for_programs[] = {
    SCMP_SYS(alarm),
    SCMP_SYS(capget),
    SCMP_SYS(chdir),
    SCMP_SYS(copy_file_range),
    SCMP_SYS(creat),
    SCMP_SYS(dup2),
    SCMP_SYS(dup3),
    SCMP_SYS(epoll_create),
    SCMP_SYS(epoll_create1),
    SCMP_SYS(epoll_ctl),
    SCMP_SYS(epoll_pwait),
    SCMP_SYS(epoll_wait),
    SCMP_SYS(eventfd),
    SCMP_SYS(execve),
    SCMP_SYS(fallocate),
    SCMP_SYS(fchdir),
    SCMP_SYS(fdatasync),
    SCMP_SYS(fork),
    SCMP_SYS(fsync),
    SCMP_SYS(ftruncate),
    SCMP_SYS(get_robust_list),
    SCMP_SYS(getdents),
    SCMP_SYS(getgroups),
    SCMP_SYS(getitimer),
    SCMP_SYS(getpgid),
    SCMP_SYS(getpgrp),
    SCMP_SYS(getpriority),
    SCMP_SYS(getresgid),
    SCMP_SYS(getresuid),
    SCMP_SYS(getsid),
    SCMP_SYS(getxattr),
    SCMP_SYS(lgetxattr),
    SCMP_SYS(fgetxattr),
    SCMP_SYS(link),
    SCMP_SYS(linkat),
    SCMP_SYS(memfd_create),
    SCMP_SYS(mincore),
    SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat),
    SCMP_SYS(mlock),
    SCMP_SYS(msync),
    SCMP_SYS(munlock),
    SCMP_SYS(pause),
    SCMP_SYS(pipe),
    SCMP_SYS(pselect6),
    SCMP_SYS(pwrite64),
    SCMP_SYS(pwritev),
    SCMP_SYS(rename),
    SCMP_SYS(renameat),
    SCMP_SYS(renameat2),
    SCMP_SYS(rmdir),
    SCMP_SYS(rt_sigpending),
    SCMP_SYS(rt_sigsuspend),
    SCMP_SYS(rt_sigtimedwait),
    SCMP_SYS(sched_get_priority_max),
    SCMP_SYS(sched_get_priority_min),
    SCMP_SYS(select),
    SCMP_SYS(sendfile),
    SCMP_SYS(setitimer),
    SCMP_SYS(setrlimit),
    SCMP_SYS(signalfd4),
    SCMP_SYS(socketpair),
    SCMP_SYS(splice),
    SCMP_SYS(symlink),
    SCMP_SYS(symlinkat),
    SCMP_SYS(timer_create),
    SCMP_SYS(timer_delete),
    SCMP_SYS(timer_settime),
    SCMP_SYS(timerfd_create),
    SCMP_SYS(timerfd_settime),
    SCMP_SYS(umask),
    SCMP_SYS(unlink),
    SCMP_SYS(unlinkat),
    SCMP_SYS(vfork),
    SCMP_SYS(wait4),
    SCMP_SYS(waitid),
};

// The rules for files do not cover these calls, and a signal goes to any process that has the
// number.
const int for_caged_programs[] = {
    SCMP_SYS(chmod),     SCMP_SYS(fchmod),   SCMP_SYS(fchmodat), SCMP_SYS(chown),
    SCMP_SYS(fchown),    SCMP_SYS(fchownat), SCMP_SYS(lchown),   SCMP_SYS(flock),
    SCMP_SYS(futimesat), SCMP_SYS(utime),    SCMP_SYS(utimes),   SCMP_SYS(utimensat),
    SCMP_SYS(kill),      SCMP_SYS(tgkill),   SCMP_SYS(tkill),    SCMP_SYS(truncate),
};

class Filter {
  public:
    // Calls of another architecture's numbering end the process.
    Filter() : context_(seccomp_init(SCMP_ACT_ERRNO(EPERM))) {}
    ~Filter() {
        if (context_) seccomp_release(context_);
    }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    void allow(int call) { add(SCMP_ACT_ALLOW, call, nullptr); }
    void allow_if(int call, unsigned argument, uint64_t value, uint64_t mask = UINT64_MAX) {
        const scmp_arg_cmp condition = {argument, SCMP_CMP_MASKED_EQ, mask, value};
        add(SCMP_ACT_ALLOW, call, &condition);
    }
    // Makes a call look missing, so that libraries take another way.
    void lack(int call, int error) {
        add(SCMP_ACT_ERRNO(static_cast<uint16_t>(error)), call, nullptr);
    }
    bool load() { return is_whole_ && seccomp_load(context_) == 0; }

  private:
    // A rule that cannot be added only forbids more, but a filter without rules is no filter.
    void add(uint32_t action, int call, const scmp_arg_cmp* condition) {
        if (!context_) return;
        is_whole_ = true;
        seccomp_rule_add_array(context_, action, call, condition ? 1 : 0, condition);
    }

    scmp_filter_ctx context_;
    bool is_whole_ = false;
};

// The mask of 32-bit arguments: the kernel reads only these bits, and the upper half may be
// anything.
const uint64_t word = 0xffffffff;

void allow_common(Filter& filter) {
    for (const int call : for_all) filter.allow(call);
    // About this process alone, and for asking only.
    filter.allow_if(SCMP_SYS(sched_getaffinity), 0, 0, word);
    filter.allow_if(SCMP_SYS(prlimit64), 0, 0, word);
    for (const uint64_t name : {PR_SET_NAME, PR_GET_NAME, PR_GET_DUMPABLE, PR_CAPBSET_READ}) {
        filter.allow_if(SCMP_SYS(prctl), 0, name, word);
    }
    // These leave out who is signalled when something can be read, and locks, leases and watches of
    // files.
    for (const uint64_t command : {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL}) {
        filter.allow_if(SCMP_SYS(fcntl), 1, command, word);
    }
    // These calls hide their arguments from the filter.
    filter.lack(SCMP_SYS(clone3), ENOSYS);
    filter.lack(SCMP_SYS(openat2), ENOSYS);
}

void allow_reading(Filter& filter) {
    const uint64_t writing = O_ACCMODE | O_CREAT | O_TRUNC | O_ASYNC;
    filter.allow_if(SCMP_SYS(open), 1, 0, writing);
    filter.allow_if(SCMP_SYS(openat), 2, 0, writing);
}

// Older kernels have no rule against emptying a file that is opened for reading.
void allow_opening(Filter& filter, int call, unsigned flags) {
    filter.allow_if(call, flags, 0, O_TRUNC);
    for (const uint64_t way : {O_WRONLY, O_RDWR}) {
        filter.allow_if(call, flags, way | O_TRUNC, O_ACCMODE | O_TRUNC);
    }
}

}  // namespace

bool allow_decoder_calls() {
    Filter filter;
    allow_common(filter);
    allow_reading(filter);
    filter.allow_if(SCMP_SYS(clone), 0, CLONE_THREAD, CLONE_THREAD);
    // The process may signal itself, to end.
    filter.allow_if(SCMP_SYS(tgkill), 0, static_cast<uint64_t>(getpid()), word);
    filter.lack(SCMP_SYS(ioctl), ENOTTY);
    return filter.load();
}

bool allow_program_calls(bool caged) {
    Filter filter;
    allow_common(filter);
    for (const int call : for_programs) filter.allow(call);
    if (caged) {
        for (const int call : for_caged_programs) filter.allow(call);
    }
    allow_opening(filter, SCMP_SYS(open), 1);
    allow_opening(filter, SCMP_SYS(openat), 2);
    filter.allow_if(SCMP_SYS(clone), 0, 0,
                    CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC |
                        CLONE_NEWUTS | CLONE_NEWCGROUP);
    filter.allow_if(SCMP_SYS(fcntl), 1, F_SETFL, word);
    // It may make pipes, but no devices.
    filter.allow_if(SCMP_SYS(mknod), 1, S_IFIFO, S_IFMT);
    filter.allow_if(SCMP_SYS(mknodat), 2, S_IFIFO, S_IFMT);
    for (const uint64_t request : {TCGETS, TIOCGWINSZ, FIONREAD, FIONBIO, FIOCLEX, FIONCLEX}) {
        filter.allow_if(SCMP_SYS(ioctl), 1, request, word);
    }
    return filter.load();
}

}  // namespace thumbnails
