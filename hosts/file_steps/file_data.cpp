#include "file_steps/file_data.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "file_steps/descriptor.h"

namespace operations {

namespace {

constexpr uint64_t small_file = 64 * 1024;
constexpr uint64_t piece = 8 * 1024 * 1024;
constexpr size_t buffer_size = 256 * 1024;

// One buffer for each use in each thread, kept: making one takes longer than copying a small file.
char* kept_buffer(int use) {
    thread_local std::unique_ptr<char[]> buffers[2];
    if (!buffers[use]) buffers[use].reset(new char[buffer_size]);
    return buffers[use].get();
}

ssize_t read_at(int file, char* buffer, size_t size, uint64_t at) {
    for (;;) {
        const ssize_t count = pread(file, buffer, size, static_cast<off_t>(at));
        if (count >= 0 || errno != EINTR) return count;
    }
}

// Copies a file that fits into one read. Reads on to the end, since the file may have grown.
int copy_small(int source, int target, uint64_t size) {
    char buffer[small_file + 1];
    uint64_t total = 0;
    while (total <= size) {
        const ssize_t count = read_at(source, buffer + total, size + 1 - total, total);
        if (count < 0) return errno;
        if (count == 0) break;
        total += static_cast<uint64_t>(count);
    }
    if (total != size) return ESTALE;
    return write_fully(target, buffer, size) ? 0 : errno;
}

bool is_unsupported(int error) {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ||
           error == EBADF || error == EPERM || error == ETXTBSY;
}

// Copies one stretch to the same place in the target, through this process.
int read_and_write(int source, int target, uint64_t at, uint64_t end, const PieceDone& done) {
    char* buffer = kept_buffer(0);
    while (at < end) {
        const size_t wanted = std::min<uint64_t>(buffer_size, end - at);
        const ssize_t count = read_at(source, buffer, wanted, at);
        if (count < 0) return errno;
        if (count == 0) return ESTALE;
        if (lseek(target, static_cast<off_t>(at), SEEK_SET) < 0) return errno;
        if (!write_fully(target, buffer, static_cast<size_t>(count))) return errno;
        at += static_cast<uint64_t>(count);
        if (!done(static_cast<uint64_t>(count))) return ECANCELED;
    }
    return 0;
}

// Copies one stretch within the kernel.
int copy_stretch(int source, int target, uint64_t at, uint64_t end, const PieceDone& done) {
    while (at < end) {
        loff_t from = static_cast<loff_t>(at), to = from;
        const size_t wanted = std::min(piece, end - at);
        const ssize_t count = copy_file_range(source, &from, target, &to, wanted, 0);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && !is_unsupported(errno)) return errno;
        // Some file systems say "end of file" where reading works.
        if (count <= 0) return read_and_write(source, target, at, end, done);
        // Lets the disk begin to write while the next piece is read.
        sync_file_range(target, static_cast<off_t>(at), count, SYNC_FILE_RANGE_WRITE);
        at += static_cast<uint64_t>(count);
        if (!done(static_cast<uint64_t>(count))) return ECANCELED;
    }
    return 0;
}

// Copies only the data of the source; the rest stays a hole.
int copy_sparse(int source, int target, uint64_t size, const PieceDone& done) {
    uint64_t at = 0;
    while (at < size) {
        const off_t data = lseek(source, static_cast<off_t>(at), SEEK_DATA);
        if (data < 0 && errno == ENXIO) break;
        if (data < 0) return copy_stretch(source, target, at, size, done);
        const off_t hole = lseek(source, data, SEEK_HOLE);
        if (hole < 0) return errno;
        const uint64_t end = std::min(static_cast<uint64_t>(hole), size);
        if (static_cast<uint64_t>(data) >= end) break;
        const int error = copy_stretch(source, target, static_cast<uint64_t>(data), end, done);
        if (error != 0) return error;
        at = end;
    }
    return ftruncate(target, static_cast<off_t>(size)) == 0 ? 0 : errno;
}

}  // namespace

int copy_data(int source, int target, uint64_t size, uint64_t blocks, const PieceDone& done) {
    if (size <= small_file) {
        const int error = copy_small(source, target, size);
        return error != 0 ? error : done(size) ? 0 : ECANCELED;
    }
    if (ioctl(target, FICLONE, source) == 0) return done(size) ? 0 : ECANCELED;
    if (blocks * 512 < size) return copy_sparse(source, target, size, done);
    posix_fadvise(source, 0, 0, POSIX_FADV_SEQUENTIAL);
    return copy_stretch(source, target, 0, size, done);
}

int compare_data(int source, int target, const PieceDone& done) {
    posix_fadvise(target, 0, 0, POSIX_FADV_DONTNEED);
    char *ours = kept_buffer(0), *theirs = kept_buffer(1);
    for (uint64_t at = 0;;) {
        const ssize_t count = read_at(source, ours, buffer_size, at);
        if (count < 0) return errno;
        const size_t wanted = count == 0 ? 1 : static_cast<size_t>(count);
        size_t got = 0;
        while (got < wanted) {
            const ssize_t more = read_at(target, theirs + got, wanted - got, at + got);
            if (more < 0) return errno;
            if (more == 0) break;
            got += static_cast<size_t>(more);
        }
        if (count == 0) return got == 0 ? 0 : EBADMSG;
        if (got != wanted || memcmp(ours, theirs, wanted) != 0) return EBADMSG;
        at += got;
        if (!done(0)) return ECANCELED;
    }
}

}  // namespace operations
