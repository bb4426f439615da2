// The calls that a decoder can still make, tried in processes that have restricted themselves.
#include "quicklook/decoder/restrictions.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/msg.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace {

using namespace thumbnails;

// The exit status of a process that restricts itself and runs this; negative when a signal killed
// it.
int status_of(const std::function<bool()>& restrict_self, const std::function<int()>& deed) {
    const pid_t child = fork();
    if (child == 0) _exit(restrict_self() ? deed() : 99);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// 0 when the call succeeded, otherwise its error.
int error_of(long result) { return result >= 0 ? 0 : errno; }

// Simulates a kernel without Landlock, for the children of this process.
void lose_landlock() {
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
    seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(landlock_create_ruleset), 0);
    seccomp_load(filter);
    seccomp_release(filter);
}

// Restricts the process as on a system without bubblewrap, where no other cage helps.
bool restrict_plainly() { return restrict_decoder(false); }

// Another process of the same user.
class Neighbour {
  public:
    Neighbour() : process_(fork()) {
        if (process_ != 0) return;
        for (;;) pause();
    }
    ~Neighbour() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    pid_t process() const { return process_; }

  private:
    pid_t process_;
};

// An action that a taken-over decoder might try. Without restrictions it succeeds, or fails for
// another reason.
struct Attempt {
    const char* what;
    std::function<long()> deed;
    bool may_fail = false;
};

class Restrictions : public testing::Test {
  protected:
    void expect_refused(
        const std::function<bool()>& restrict_self, const std::vector<Attempt>& attempts,
        const std::function<void()>& prepare = [] {}) {
        for (const Attempt& attempt : attempts) {
            const auto outcome = [&] { return error_of(attempt.deed()); };
            prepare();
            const int before = status_of([] { return true; }, outcome);
            prepare();
            if (before == EPERM || before == EACCES) {
                // Some kernels refuse it to everybody.
                EXPECT_TRUE(attempt.may_fail) << attempt.what << ": " << before;
                continue;
            }
            const int after = status_of(restrict_self, outcome);
            EXPECT_TRUE(after == EPERM || after == EACCES || after == ENOTTY || after == ENOSYS)
                << attempt.what << ": " << after;
        }
    }
    // Calls that reach other processes, or are shared with them.
    std::vector<Attempt> attempts_at_others(pid_t other, pid_t parent);
    // Calls that change files, or hold or watch them. `file` is open for reading only.
    std::vector<Attempt> attempts_at_files(const std::string& path, int file);

    void expect_decoder(int error, const std::function<long()>& deed, const char* what) {
        EXPECT_EQ(status_of([] { return true; }, [&] { return error_of(deed()); }), 0) << what;
        EXPECT_EQ(status_of(restrict_plainly, [&] { return error_of(deed()); }), error) << what;
    }

    test::TempFolder folder;
};

std::vector<Attempt> Restrictions::attempts_at_others(pid_t other, pid_t parent) {
    const auto environment = "/proc/" + std::to_string(parent) + "/environ";
    const auto command_line = "/proc/" + std::to_string(other) + "/cmdline";
    const key_t key = IPC_PRIVATE;
    return {
        {"a signal", [=] { return kill(other, 0); }},
        {"a signal to a thread", [=] { return syscall(SYS_tgkill, other, other, 0); }},
        {"a signal by tkill", [=] { return syscall(SYS_tkill, other, 0); }},
        {"a queued signal",
         [=] {
             siginfo_t info = {};
             info.si_code = SI_QUEUE;
             return syscall(SYS_rt_sigqueueinfo, other, SIGCONT, &info);
         }},
        {"a handle", [=] { return syscall(SYS_pidfd_open, other, 0); }},
        {"tracing", [=] { return ptrace(PTRACE_ATTACH, other, nullptr, nullptr); }},
        {"reading memory",
         [=]() -> long {
             char byte;
             static char source;
             const iovec to = {&byte, 1}, from = {&source, 1};
             return process_vm_readv(other, &to, 1, &from, 1, 0);
         }},
        {"its limits",
         [=] {
             rlimit limit;
             return prlimit(other, RLIMIT_NOFILE, nullptr, &limit);
         }},
        {"its priority", [=] { return setpriority(PRIO_PROCESS, static_cast<id_t>(other), 1); }},
        {"its processors",
         [=] {
             cpu_set_t set;
             return sched_getaffinity(other, sizeof set, &set);
         }},
        {"its group", [=] { return setpgid(0, 0); }},
        {"an environment", [=] { return open(environment.c_str(), O_RDONLY); }},
        {"a command line", [=] { return open(command_line.c_str(), O_RDONLY); }},
        {"shared memory",
         [=] {
             const int id = shmget(key, 4096, 0600);
             if (id >= 0) shmctl(id, IPC_RMID, nullptr);
             return id;
         }},
        {"a queue of messages",
         [=] {
             const int id = msgget(key, 0600);
             if (id >= 0) msgctl(id, IPC_RMID, nullptr);
             return id;
         }},
        {"semaphores",
         [=] {
             const int id = semget(key, 1, 0600);
             if (id >= 0) semctl(id, 0, IPC_RMID);
             return id;
         }},
        {"a queue of the other kind",
         [] { return syscall(SYS_mq_open, "delvio-no-such-queue", O_RDWR, 0, nullptr); }},
        {"whom a descriptor signals",
         [=] {
             int ends[2];
             return pipe2(ends, O_CLOEXEC) == 0 ? fcntl(ends[0], F_SETOWN, other) : 0;
         }},
        {"the network", [] { return socket(AF_INET, SOCK_STREAM, 0); }},
        {"the desktop's sockets", [] { return socket(AF_UNIX, SOCK_STREAM, 0); }},
        {"a name space", [] { return unshare(CLONE_NEWUSER); }, true},
        {"a ring of calls", [] { return syscall(SYS_io_uring_setup, 1, nullptr); }, true},
        {"a key", [] { return syscall(SYS_keyctl, 0, -1, 0); }, true},
        {"counting events", [] { return syscall(SYS_perf_event_open, nullptr, 0, -1, -1, 0); },
         true},
        {"outliving the host", [] { return prctl(PR_SET_PDEATHSIG, 0); }},
    };
}

std::vector<Attempt> Restrictions::attempts_at_files(const std::string& path, int file) {
    const std::string other = path + ".other";
    return {
        {"modes", [=] { return chmod(path.c_str(), 0600); }},
        {"modes of what is open", [=] { return fchmod(file, 0600); }},
        {"owners", [=] { return chown(path.c_str(), geteuid(), getegid()); }},
        {"times", [=] { return utimensat(AT_FDCWD, path.c_str(), nullptr, 0); }},
        {"times of what is open", [=] { return futimens(file, nullptr); }},
        {"attributes", [=] { return setxattr(path.c_str(), "user.a", "b", 1, 0); }},
        {"attributes of what is open", [=] { return fsetxattr(file, "user.a", "b", 1, 0); }},
        {"emptying", [=] { return truncate(path.c_str(), 0); }},
        {"emptying while opening", [=] { return open(path.c_str(), O_RDONLY | O_TRUNC); }},
        {"writing", [=] { return open(path.c_str(), O_WRONLY); }},
        // Something taken on an open file, such as a lock, outlives the process that took it.
        {"a lock",
         [=] {
             const int result = flock(file, LOCK_EX | LOCK_NB);
             if (result == 0) flock(file, LOCK_UN);
             return result;
         }},
        {"a lock of the other kind",
         [=] {
             struct flock lock = {};
             lock.l_type = F_RDLCK;
             return fcntl(file, F_SETLK, &lock);
         }},
        {"a lease",
         [=] {
             const int result = fcntl(file, F_SETLEASE, F_RDLCK);
             if (result == 0) fcntl(file, F_SETLEASE, F_UNLCK);
             return result;
         }},
        {"a watch", [=] { return inotify_init(); }},
        {"another name", [=] { return link(path.c_str(), other.c_str()); }},
        {"removing", [=] { return unlink(path.c_str()); }},
    };
}

TEST_F(Restrictions, ADecoderReachesNoOtherProcessInAnyWay) {
    const Neighbour neighbour;
    expect_refused(restrict_plainly, attempts_at_others(neighbour.process(), getpid()));
    // A cage has other means against reading; the calls are refused there too.
    EXPECT_EQ(status_of([] { return restrict_decoder(true); },
                        [&] { return error_of(kill(neighbour.process(), 0)); }),
              EPERM);
}

TEST_F(Restrictions, AProgramReachesNoOtherProcessInAnyWay) {
    const Neighbour neighbour;
    const std::string output = folder.folder("output");
    expect_refused(
        [&] {
            return restrict_program({{}, output, false});
        },
        attempts_at_others(neighbour.process(), getpid()));
}

TEST_F(Restrictions, NobodyChangesLocksOrWatchesAFileThatIsNotTheirs) {
    const std::string path = folder.file("file", "text"), output = folder.folder("output");
    const auto as_program = [&] { return restrict_program({{path}, output, false}); };
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const auto prepare = [&] {
        folder.file("file", "text");
        unlink((path + ".other").c_str());
    };
    expect_refused(restrict_plainly, attempts_at_files(path, file), prepare);
    expect_refused(as_program, attempts_at_files(path, file), prepare);
    close(file);
}

TEST_F(Restrictions, WhereFilesCannotBeKeptAwayNothingGoesOnWithoutACage) {
    const auto nothing = [] { return 0; };
    const int refused = 99;
    const auto without = [](const std::function<bool()>& restrict_self) {
        return [restrict_self] {
            lose_landlock();
            return restrict_self();
        };
    };
    EXPECT_EQ(status_of(restrict_plainly, nothing), 0);
    EXPECT_EQ(status_of(without(restrict_plainly), nothing), refused);
    EXPECT_EQ(status_of(without([] { return restrict_decoder(true); }), nothing), 0);
    EXPECT_EQ(status_of(without([] {
                            return restrict_program({{}, "", false});
                        }),
                        nothing),
              refused);
    EXPECT_EQ(status_of(without([] { return restrict_program({{}, "", true}); }), nothing), 0);
}

TEST_F(Restrictions, ADecoderMayEndItself) {
    EXPECT_EQ(status_of(restrict_plainly,
                        [] {
                            abort();
                            return 0;
                        }),
              -SIGABRT);
}

TEST_F(Restrictions, ADecoderHasNoNetwork) {
    expect_decoder(
        EPERM, [] { return socket(AF_INET, SOCK_STREAM, 0); }, "internet");
    expect_decoder(
        EPERM, [] { return socket(AF_UNIX, SOCK_STREAM, 0); }, "local");
}

TEST_F(Restrictions, ADecoderStartsNothing) {
    expect_decoder(
        EPERM, [] { return execl("/bin/true", "true", nullptr); }, "another program");
    expect_decoder(
        EPERM,
        []() -> long {
            const pid_t child = fork();
            if (child == 0) _exit(0);
            return child;
        },
        "another process");
}

// By the kernel's call itself: a sanitizer's own threads ask for their processors by number, and
// a decoder may ask only for its own.
TEST_F(Restrictions, ADecoderStartsThreads) {
    EXPECT_EQ(status_of(restrict_plainly,
                        [] {
                            static char stack[65536];
                            static std::atomic<int> value = 1;
                            const auto run = [](void*) { return value = 0; };
                            const int flags = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND |
                                              CLONE_THREAD | CLONE_SYSVSEM;
                            if (clone(run, stack + sizeof stack, flags, nullptr) == -1) return 2;
                            while (value) sched_yield();
                            return 0;
                        }),
              0);
}

TEST_F(Restrictions, ADecoderWritesNothing) {
    const std::string path = folder.file("file", "text"), fresh = folder.path("fresh");
    expect_decoder(
        EPERM, [&] { return open(path.c_str(), O_WRONLY); }, "writing");
    expect_decoder(
        EPERM, [&] { return open(path.c_str(), O_RDWR | O_APPEND); }, "appending");
    expect_decoder(
        EPERM, [&] { return open(path.c_str(), O_RDONLY | O_TRUNC); }, "emptying");
    expect_decoder(
        EPERM, [&] { return open(fresh.c_str(), O_RDONLY | O_CREAT, 0600); }, "making");
    unlink(fresh.c_str());
    folder.file("file", "text");
    EXPECT_EQ(status_of(restrict_plainly, [&] { return error_of(mkdir(fresh.c_str(), 0700)); }),
              EPERM);
    EXPECT_EQ(status_of(restrict_plainly, [&] { return error_of(unlink(path.c_str())); }), EPERM);
    EXPECT_EQ(
        status_of(restrict_plainly, [&] { return error_of(rename(path.c_str(), fresh.c_str())); }),
        EPERM);
    EXPECT_EQ(status_of(restrict_plainly, [&] { return error_of(chmod(path.c_str(), 0777)); }),
              EPERM);
    EXPECT_EQ(test::read_file(path), "text");
}

TEST_F(Restrictions, ADecoderReadsTheSystemAndNotTheUser) {
    expect_decoder(
        0, [] { return open("/usr/share/mime/mime.cache", O_RDONLY); }, "the system's");
    const std::string path = folder.file("file", "text");
    expect_decoder(
        EACCES, [&] { return open(path.c_str(), O_RDONLY); }, "the user's");
}

TEST_F(Restrictions, AProgramWritesToItsFolderOnly) {
    const std::string input = folder.file("input", "text");
    const std::string output = folder.folder("output"), elsewhere = folder.folder("elsewhere");
    const auto restrict_self = [&] { return restrict_program({{input}, output, false}); };
    const auto make = [](const std::string& path) {
        return error_of(open(path.c_str(), O_WRONLY | O_CREAT, 0600));
    };
    EXPECT_EQ(status_of(restrict_self, [&] { return make(output + "/a"); }), 0);
    EXPECT_EQ(status_of(restrict_self, [&] { return error_of(open(input.c_str(), O_RDONLY)); }), 0);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(socket(AF_INET, SOCK_DGRAM, 0)); }),
              EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(setsid()); }), EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return error_of(unshare(CLONE_NEWUSER)); }), EPERM);
    EXPECT_EQ(status_of(restrict_self, [] { return system("exit 0"); }), 0);
    EXPECT_EQ(status_of(restrict_self, [&] { return make(elsewhere + "/a"); }), EACCES);
    EXPECT_EQ(status_of(restrict_self, [&] { return make(input); }), EACCES);
}

TEST_F(Restrictions, ResourcesAreLimited) {
    const auto limited = [](unsigned processor_seconds, unsigned seconds) {
        return [=] {
            limit_resources(100, processor_seconds, seconds);
            return true;
        };
    };
    const auto compute = [] {
        for (volatile unsigned i = 0;; i = i + 1) {
        }
        return 0;
    };
    const auto wait = [] {
        for (;;) pause();
        return 0;
    };
    const auto ask = [] {
        rlimit limit;
        getrlimit(RLIMIT_AS, &limit);
        return limit.rlim_cur == 100 * 1024 * 1024 ? 0 : 1;
    };
    EXPECT_EQ(status_of(limited(1, 200), compute), -SIGKILL);
    EXPECT_EQ(status_of(limited(200, 1), wait), -SIGALRM);
    EXPECT_EQ(status_of(limited(200, 200), ask), 0);
}

}  // namespace
