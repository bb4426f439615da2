// A library that is loaded before all others and lets one call of a family fail: the test says
// which. It acts only in Delvio's own programs, not in those that they start.
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "faults/failing.h"

namespace faults {

Control* control;
thread_local bool is_counting;

}  // namespace faults

using namespace faults;

namespace {

// Only system calls of its own, because the others are replaced below.
bool is_our_program() {
    char path[512];
    const long size = syscall(SYS_readlink, "/proc/self/exe", path, sizeof path - 1);
    if (size <= 0) return false;
    path[size] = 0;
    const char* const slash = strrchr(path, '/');
    const char* const name = slash ? slash + 1 : path;
    return strncmp(name, "delvio", 6) == 0 || strcmp(name, "operate") == 0;
}

__attribute__((constructor)) void map_control() {
    const char* const file = getenv(variable);
    if (!file || !is_our_program()) return;
    const long descriptor = syscall(SYS_openat, AT_FDCWD, file, O_RDWR | O_CLOEXEC);
    if (descriptor < 0) return;
    void* const memory = mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED,
                              static_cast<int>(descriptor), 0);
    syscall(SYS_close, descriptor);
    if (memory == MAP_FAILED) return;
    control = static_cast<Control*>(memory);
    int nobody = 0;
    control->first.compare_exchange_strong(nobody, getpid());
}

bool is_in(const char* library, const void* caller) {
    Dl_info module = {};
    return dladdr(caller, &module) && module.dli_fname && strstr(module.dli_fname, library);
}

constexpr const char* sanitizers = "libclang_rt";

void note(const char* name, const void* caller) {
    Dl_info module = {};
    const char* file = dladdr(caller, &module) && module.dli_fname ? module.dli_fname : "?";
    if (const char* slash = strrchr(file, '/')) file = slash + 1;
    snprintf(control->name, sizeof control->name, "%s", name);
    snprintf(control->module, sizeof control->module, "%s+%#lx", file,
             static_cast<unsigned long>(reinterpret_cast<uintptr_t>(caller) -
                                        reinterpret_cast<uintptr_t>(module.dli_fbase)));
}

bool is_meant(int only) {
    if (only == first_process) only = control->first;
    return only == 0 || only == getpid();
}

}  // namespace

bool faults::fails(Family family, int error, const char* name, const void* caller) {
    if (!control || is_counting) return false;
    if (!is_meant(control->only)) return false;
    const long number = ++control->calls[family];
    if (control->family != family) return false;
    if (number < control->at || number >= control->at + control->times) return false;
    is_counting = true;
    note(name, caller);
    control->failed++;
    is_counting = false;
    errno = error;
    return true;
}

namespace {

template <typename Function>
Function* real(Function*, const char* name) {
    is_counting = true;
    auto* const found = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    is_counting = false;
    return found;
}

bool names_socket(const sockaddr* address, socklen_t size, const char* part) {
    if (!address || address->sa_family != AF_UNIX) return false;
    const auto* unix_address = reinterpret_cast<const sockaddr_un*>(address);
    const size_t begin = offsetof(sockaddr_un, sun_path) + (unix_address->sun_path[0] == 0);
    if (size <= begin) return false;
    char path[sizeof unix_address->sun_path + 1] = {};
    memcpy(path, reinterpret_cast<const char*>(address) + begin, size - begin);
    return strstr(path, part);
}

bool leads_to_bus(const sockaddr* address, socklen_t size) {
    return names_socket(address, size, "/bus") || names_socket(address, size, "dbus-");
}

constexpr int most_files = 4096;
std::atomic<int> server_of[most_files];  // display, bus, or 0
// Threads wake each other through these. The kernel lets no such call fail, and GLib asks for none.
std::atomic<bool> is_wake_up[most_files];

bool can_fail(int file) { return file < 0 || file >= most_files || !is_wake_up[file]; }

bool goes_to(Family server, int file) {
    return file >= 0 && file < most_files && server_of[file] == server;
}

// A connection that fails has been closed by the server. A program that waits for an answer must be
// able to see that.
bool connection_fails(Family server, int file, int error, const char* name, const void* caller) {
    if (!goes_to(server, file) || !fails(server, error, name, caller)) return false;
    shutdown(file, SHUT_RDWR);
    errno = error;
    return true;
}

// A line for each open file. Numbers, as of pipes, are left out: they differ from run to run. So is
// the connection to the bus, which GLib's own thread closes, before or after the end.
void list_files(char* text, size_t size) {
    size_t used = 0;
    for (int file = 0; file < most_files && used + 300 < size; file++) {
        char path[64], target[256];
        snprintf(path, sizeof path, "/proc/self/fd/%d", file);
        const long length = syscall(SYS_readlink, path, target, sizeof target - 1);
        if (length <= 0 || goes_to(bus, file)) continue;
        target[length] = 0;
        if (char* number = strchr(target, '[')) *number = 0;
        used += static_cast<size_t>(snprintf(text + used, size - used, "%s\n", target));
    }
}

__attribute__((destructor)) void look_at_files_at_end() {
    if (!control || control->first != getpid()) return;
    list_files(control->files_at_end, sizeof control->files_at_end);
}

}  // namespace

// A replacement with the same arguments: it fails with the family's error, or calls the real one.
#define REPLACE(family, error, bad, result, name, parameters, ...)                    \
    extern "C" __attribute__((visibility("default"))) result name parameters {        \
        static auto* const next = real(static_cast<decltype(&name)>(nullptr), #name); \
        if (fails(family, error, #name, CALLER)) return bad;                          \
        return next(__VA_ARGS__);                                                     \
    }

#pragma clang diagnostic ignored "-Wnonnull"

REPLACE(listing, EMFILE, nullptr, DIR*, opendir, (const char* path), path)
REPLACE(listing, ENOMEM, nullptr, DIR*, fdopendir, (int file), file)
REPLACE(listing, EIO, nullptr, dirent*, readdir, (DIR * folder), folder)
REPLACE(listing, EIO, nullptr, dirent64*, readdir64, (DIR * folder), folder)
REPLACE(listing, EIO, -1, ssize_t, getdents64, (int file, void* entries, size_t size), file,
        entries, size)
using Filter = int (*)(const dirent*);
using Order = int (*)(const dirent**, const dirent**);
REPLACE(listing, ENOMEM, -1, int, scandir,
        (const char* path, dirent*** list, Filter filter, Order order), path, list, filter, order)

REPLACE(status, EIO, -1, int, stat, (const char* path, struct stat* what), path, what)
REPLACE(status, EIO, -1, int, lstat, (const char* path, struct stat* what), path, what)
REPLACE(status, EIO, -1, int, fstat, (int file, struct stat* what), file, what)
REPLACE(status, EIO, -1, int, fstatat, (int at, const char* path, struct stat* what, int flags), at,
        path, what, flags)
REPLACE(status, EIO, -1, int, stat64, (const char* path, struct stat64* what), path, what)
REPLACE(status, EIO, -1, int, lstat64, (const char* path, struct stat64* what), path, what)
REPLACE(status, EIO, -1, int, fstat64, (int file, struct stat64* what), file, what)
REPLACE(status, EIO, -1, int, fstatat64, (int at, const char* path, struct stat64* what, int flags),
        at, path, what, flags)
REPLACE(status, EIO, -1, int, statx,
        (int at, const char* path, int flags, unsigned mask, struct statx* what), at, path, flags,
        mask, what)
REPLACE(status, EIO, -1, int, access, (const char* path, int mode), path, mode)
REPLACE(status, EIO, -1, int, faccessat, (int at, const char* path, int mode, int flags), at, path,
        mode, flags)
REPLACE(status, EIO, -1, ssize_t, readlink, (const char* path, char* text, size_t size), path, text,
        size)
REPLACE(status, EIO, -1, ssize_t, readlinkat, (int at, const char* path, char* text, size_t size),
        at, path, text, size)

REPLACE(attributes, EIO, -1, ssize_t, getxattr,
        (const char* path, const char* name, void* value, size_t size), path, name, value, size)
REPLACE(attributes, EIO, -1, ssize_t, lgetxattr,
        (const char* path, const char* name, void* value, size_t size), path, name, value, size)
REPLACE(attributes, EIO, -1, ssize_t, fgetxattr,
        (int file, const char* name, void* value, size_t size), file, name, value, size)
REPLACE(attributes, EIO, -1, ssize_t, listxattr, (const char* path, char* list, size_t size), path,
        list, size)
REPLACE(attributes, EIO, -1, ssize_t, llistxattr, (const char* path, char* list, size_t size), path,
        list, size)
REPLACE(attributes, EIO, -1, ssize_t, flistxattr, (int file, char* list, size_t size), file, list,
        size)
REPLACE(attributes, EIO, -1, int, setxattr,
        (const char* path, const char* name, const void* value, size_t size, int flags), path, name,
        value, size, flags)
REPLACE(attributes, EIO, -1, int, lsetxattr,
        (const char* path, const char* name, const void* value, size_t size, int flags), path, name,
        value, size, flags)
REPLACE(attributes, EIO, -1, int, fsetxattr,
        (int file, const char* name, const void* value, size_t size, int flags), file, name, value,
        size, flags)

// The mode counts only with O_CREAT, and is harmless without.
#define REPLACE_OPEN(name, parameters, ...)                                           \
    extern "C" __attribute__((visibility("default"))) int name parameters {           \
        static auto* const next = real(static_cast<decltype(&name)>(nullptr), #name); \
        if (fails(opening, EMFILE, #name, CALLER)) return -1;                         \
        va_list more;                                                                 \
        va_start(more, flags);                                                        \
        const mode_t mode = va_arg(more, mode_t);                                     \
        va_end(more);                                                                 \
        return next(__VA_ARGS__, mode);                                               \
    }
REPLACE_OPEN(open, (const char* path, int flags, ...), path, flags)
REPLACE_OPEN(open64, (const char* path, int flags, ...), path, flags)
REPLACE_OPEN(openat, (int at, const char* path, int flags, ...), at, path, flags)
REPLACE_OPEN(openat64, (int at, const char* path, int flags, ...), at, path, flags)
REPLACE(opening, EMFILE, nullptr, FILE*, fopen, (const char* path, const char* mode), path, mode)
REPLACE(opening, EMFILE, nullptr, FILE*, fopen64, (const char* path, const char* mode), path, mode)

REPLACE(reading, EIO, -1, ssize_t, pread, (int file, void* bytes, size_t size, off_t at), file,
        bytes, size, at)
REPLACE(reading, EIO, -1, ssize_t, pread64, (int file, void* bytes, size_t size, off64_t at), file,
        bytes, size, at)

REPLACE(writing, ENOSPC, -1, ssize_t, pwrite, (int file, const void* bytes, size_t size, off_t at),
        file, bytes, size, at)
REPLACE(writing, ENOSPC, -1, ssize_t, copy_file_range,
        (int from, off64_t* at, int to, off64_t* to_at, size_t size, unsigned flags), from, at, to,
        to_at, size, flags)
REPLACE(writing, ENOSPC, -1, int, ftruncate, (int file, off_t size), file, size)
REPLACE(writing, EIO, -1, int, futimens, (int file, const timespec* times), file, times)
REPLACE(writing, EIO, -1, int, utimensat,
        (int at, const char* path, const timespec* times, int flags), at, path, times, flags)
REPLACE(writing, EIO, -1, int, fchmod, (int file, mode_t mode), file, mode)
REPLACE(writing, EIO, -1, int, fchmodat, (int at, const char* path, mode_t mode, int flags), at,
        path, mode, flags)

REPLACE(syncing, EIO, -1, int, fsync, (int file), file)
REPLACE(syncing, EIO, -1, int, fdatasync, (int file), file)
REPLACE(syncing, EIO, -1, int, syncfs, (int file), file)

REPLACE(renaming, EIO, -1, int, rename, (const char* from, const char* to), from, to)
REPLACE(renaming, EIO, -1, int, renameat, (int at, const char* from, int to_at, const char* to), at,
        from, to_at, to)
REPLACE(renaming, EIO, -1, int, renameat2,
        (int at, const char* from, int to_at, const char* to, unsigned flags), at, from, to_at, to,
        flags)
REPLACE(renaming, EIO, -1, int, link, (const char* from, const char* to), from, to)
REPLACE(renaming, EIO, -1, int, linkat,
        (int at, const char* from, int to_at, const char* to, int flags), at, from, to_at, to,
        flags)
REPLACE(renaming, EIO, -1, int, symlink, (const char* text, const char* path), text, path)
REPLACE(renaming, EIO, -1, int, symlinkat, (const char* text, int at, const char* path), text, at,
        path)

REPLACE(removing, EIO, -1, int, unlink, (const char* path), path)
REPLACE(removing, EIO, -1, int, unlinkat, (int at, const char* path, int flags), at, path, flags)
REPLACE(removing, EIO, -1, int, rmdir, (const char* path), path)
REPLACE(removing, ENOSPC, -1, int, mkdir, (const char* path, mode_t mode), path, mode)
REPLACE(removing, ENOSPC, -1, int, mkdirat, (int at, const char* path, mode_t mode), at, path, mode)

REPLACE(handles, EMFILE, -1, int, pipe2, (int* ends, int flags), ends, flags)
REPLACE(handles, EMFILE, -1, int, socket, (int domain, int type, int protocol), domain, type,
        protocol)
REPLACE(handles, EMFILE, -1, int, socketpair, (int domain, int type, int protocol, int* ends),
        domain, type, protocol, ends)
REPLACE(handles, EMFILE, -1, int, timerfd_create, (int clock, int flags), clock, flags)
REPLACE(handles, EMFILE, -1, int, inotify_init1, (int flags), flags)
REPLACE(handles, EMFILE, -1, int, memfd_create, (const char* name, unsigned flags), name, flags)
REPLACE(handles, EMFILE, -1, int, dup, (int file), file)

// posix_spawn returns its error.
REPLACE(processes, EAGAIN, -1, pid_t, fork, ())
REPLACE(processes, EAGAIN, EAGAIN, int, posix_spawn,
        (pid_t * process, const char* path, const posix_spawn_file_actions_t* actions,
         const posix_spawnattr_t* attributes, char* const words[], char* const environment[]),
        process, path, actions, attributes, words, environment)
REPLACE(processes, EAGAIN, EAGAIN, int, posix_spawnp,
        (pid_t * process, const char* path, const posix_spawn_file_actions_t* actions,
         const posix_spawnattr_t* attributes, char* const words[], char* const environment[]),
        process, path, actions, attributes, words, environment)

EXPORT ssize_t read(int file, void* bytes, size_t size) {
    static auto* const next = real(static_cast<decltype(&read)>(nullptr), "read");
    if (can_fail(file) && fails(reading, EIO, "read", CALLER)) return -1;
    return next(file, bytes, size);
}

EXPORT ssize_t write(int file, const void* bytes, size_t size) {
    static auto* const next = real(static_cast<decltype(&write)>(nullptr), "write");
    if (can_fail(file) && fails(writing, ENOSPC, "write", CALLER)) return -1;
    return next(file, bytes, size);
}

EXPORT int eventfd(unsigned value, int flags) {
    static auto* const next = real(static_cast<decltype(&eventfd)>(nullptr), "eventfd");
    if (fails(handles, EMFILE, "eventfd", CALLER)) return -1;
    const int file = next(value, flags);
    if (file >= 0 && file < most_files) is_wake_up[file] = true;
    return file;
}

// The sanitizers find out by a pipe whether memory can be read, and take a no for a fault.
EXPORT int pipe(int* ends) {
    static auto* const next = real(static_cast<decltype(&pipe)>(nullptr), "pipe");
    if (control && !is_in(sanitizers, CALLER) && fails(handles, EMFILE, "pipe", CALLER)) return -1;
    return next(ends);
}

// GLib ends the process when it gets no thread, and nothing that uses GLib can keep it from that. A
// sanitizer's library calls for all others, GLib too.
EXPORT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*begin)(void*), void* argument) {
    static auto* const next =
        real(static_cast<decltype(&pthread_create)>(nullptr), "pthread_create");
    const bool can_fail = control && !is_in("libglib", CALLER) && !is_in(sanitizers, CALLER);
    if (can_fail && fails(threads, EAGAIN, "pthread_create", CALLER)) return EAGAIN;
    return next(thread, attributes, begin, argument);
}

EXPORT int connect(int file, const sockaddr* address, socklen_t size) {
    static auto* const next = real(static_cast<decltype(&connect)>(nullptr), "connect");
    const bool to_display = names_socket(address, size, ".X11-unix/X");
    if (to_display && fails(display, ECONNREFUSED, "connect", CALLER)) return -1;
    const bool to_bus = leads_to_bus(address, size);
    if (to_bus && fails(bus, ECONNREFUSED, "connect", CALLER)) return -1;
    const int result = next(file, address, size);
    if (result == 0 && file >= 0 && file < most_files) {
        server_of[file] = to_display ? display : to_bus ? bus : 0;
    }
    return result;
}

EXPORT int close(int file) {
    static auto* const next = real(static_cast<decltype(&close)>(nullptr), "close");
    if (file >= 0 && file < most_files) {
        server_of[file] = 0;
        is_wake_up[file] = false;
    }
    return next(file);
}

EXPORT ssize_t writev(int file, const iovec* parts, int count) {
    static auto* const next = real(static_cast<decltype(&writev)>(nullptr), "writev");
    if (connection_fails(display, file, EPIPE, "writev", CALLER)) return -1;
    return next(file, parts, count);
}

EXPORT ssize_t recvmsg(int file, msghdr* message, int flags) {
    static auto* const next = real(static_cast<decltype(&recvmsg)>(nullptr), "recvmsg");
    for (const Family server : {display, bus}) {
        if (connection_fails(server, file, ECONNRESET, "recvmsg", CALLER)) return -1;
    }
    return next(file, message, flags);
}

EXPORT ssize_t sendmsg(int file, const msghdr* message, int flags) {
    static auto* const next = real(static_cast<decltype(&sendmsg)>(nullptr), "sendmsg");
    if (connection_fails(bus, file, EPIPE, "sendmsg", CALLER)) return -1;
    return next(file, message, flags);
}

// The bus is greeted with these two.
EXPORT ssize_t send(int file, const void* bytes, size_t size, int flags) {
    static auto* const next = real(static_cast<decltype(&send)>(nullptr), "send");
    if (connection_fails(bus, file, EPIPE, "send", CALLER)) return -1;
    return next(file, bytes, size, flags);
}

EXPORT ssize_t recv(int file, void* bytes, size_t size, int flags) {
    static auto* const next = real(static_cast<decltype(&recv)>(nullptr), "recv");
    if (connection_fails(bus, file, ECONNRESET, "recv", CALLER)) return -1;
    return next(file, bytes, size, flags);
}
