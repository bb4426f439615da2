#include "hosts/operations/faulty_file_system.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/fuse.h>
#include <signal.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <new>
#include <vector>

#include "hosts/operations/scene.h"

namespace test {

namespace {

using Bytes = std::vector<char>;

template <typename Body>
Bytes bytes_of(const Body& body) {
    const char* start = reinterpret_cast<const char*>(&body);
    return {start, start + sizeof body};
}

// One node for each file that the kernel knows.
struct Node {
    int file = -1;
    uint64_t known = 0;  // how often the kernel was told about it
};

struct OpenFolder {
    std::vector<std::pair<std::string, unsigned char>> names;
};

// Each function returns the answer; on failure it sets errno and returns null.
class Server {
  public:
    Server(int device, int root, Faults* faults) : device_(device), faults_(*faults) {
        nodes_[FUSE_ROOT_ID] = {root, 1};
    }
    [[noreturn]] void run();

  private:
    using Answer = std::unique_ptr<Bytes>;

    void serve(const fuse_in_header& question, const char* body);
    Answer answer(const fuse_in_header& question, const char* body);
    Answer done(bool well) { return well ? std::make_unique<Bytes>() : nullptr; }
    Answer unknown() { return errno = ENOSYS, nullptr; }

    int file(uint64_t node) { return nodes_[node].file; }
    std::string path(uint64_t node) { return "/proc/self/fd/" + std::to_string(file(node)); }
    Answer look_up(uint64_t parent, const char* name);
    Answer attributes(uint64_t node);
    Answer set_attributes(uint64_t node, const fuse_setattr_in& wanted);
    Answer open_file(uint64_t node, uint32_t flags);
    Answer open_folder(uint64_t node);
    Answer read_file(const fuse_read_in& wanted);
    Answer read_folder(const fuse_read_in& wanted);
    Answer read_link(uint64_t node);
    Answer state_of_disk();
    void forget(uint64_t node, uint64_t times);

    const int device_;
    Faults& faults_;
    std::map<uint64_t, Node> nodes_;
    std::map<ino_t, uint64_t> by_inode_;
    std::map<uint64_t, OpenFolder> folders_;
    uint64_t next_ = FUSE_ROOT_ID + 1;
};

fuse_attr attributes_of(const struct stat& what) {
    fuse_attr attributes = {};
    attributes.ino = what.st_ino;
    attributes.size = static_cast<uint64_t>(what.st_size);
    attributes.blocks = static_cast<uint64_t>(what.st_blocks);
    attributes.atime = static_cast<uint64_t>(what.st_atim.tv_sec);
    attributes.mtime = static_cast<uint64_t>(what.st_mtim.tv_sec);
    attributes.ctime = static_cast<uint64_t>(what.st_ctim.tv_sec);
    attributes.atimensec = static_cast<uint32_t>(what.st_atim.tv_nsec);
    attributes.mtimensec = static_cast<uint32_t>(what.st_mtim.tv_nsec);
    attributes.ctimensec = static_cast<uint32_t>(what.st_ctim.tv_nsec);
    attributes.mode = what.st_mode;
    attributes.nlink = static_cast<uint32_t>(what.st_nlink);
    attributes.uid = what.st_uid;
    attributes.gid = what.st_gid;
    attributes.blksize = 4096;
    return attributes;
}

Server::Answer Server::look_up(uint64_t parent, const char* name) {
    const int found = openat(file(parent), name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
    struct stat what;
    if (found < 0 || fstat(found, &what) != 0) return nullptr;
    uint64_t& node = by_inode_[what.st_ino];
    if (node == 0) {
        node = next_++;
        nodes_[node].file = found;
    } else {
        close(found);
    }
    nodes_[node].known++;
    fuse_entry_out out = {};
    out.nodeid = node;
    out.attr = attributes_of(what);
    return std::make_unique<Bytes>(bytes_of(out));
}

void Server::forget(uint64_t node, uint64_t times) {
    const auto known = nodes_.find(node);
    if (known == nodes_.end() || node == FUSE_ROOT_ID) return;
    known->second.known -= std::min(times, known->second.known);
    if (known->second.known > 0) return;
    struct stat what;
    if (fstat(known->second.file, &what) == 0) by_inode_.erase(what.st_ino);
    close(known->second.file);
    nodes_.erase(known);
}

Server::Answer Server::attributes(uint64_t node) {
    struct stat what;
    if (fstat(file(node), &what) != 0) return nullptr;
    fuse_attr_out out = {};
    out.attr = attributes_of(what);
    return std::make_unique<Bytes>(bytes_of(out));
}

timespec time_for(uint32_t valid, uint32_t given, uint32_t now, uint64_t seconds, uint32_t rest) {
    if (valid & now) return {0, UTIME_NOW};
    if (valid & given) return {static_cast<time_t>(seconds), rest};
    return {0, UTIME_OMIT};
}

Server::Answer Server::set_attributes(uint64_t node, const fuse_setattr_in& wanted) {
    const uint32_t valid = wanted.valid;
    const std::string at = path(node);
    if (valid & FATTR_MODE && chmod(at.c_str(), wanted.mode & 07777) != 0) return nullptr;
    const uid_t user = valid & FATTR_UID ? wanted.uid : static_cast<uid_t>(-1);
    const gid_t group = valid & FATTR_GID ? wanted.gid : static_cast<gid_t>(-1);
    if (valid & (FATTR_UID | FATTR_GID) &&
        fchownat(file(node), "", user, group, AT_EMPTY_PATH) != 0) {
        return nullptr;
    }
    if (valid & FATTR_SIZE && truncate(at.c_str(), static_cast<off_t>(wanted.size)) != 0) {
        return nullptr;
    }
    const timespec times[2] = {
        time_for(valid, FATTR_ATIME, FATTR_ATIME_NOW, wanted.atime, wanted.atimensec),
        time_for(valid, FATTR_MTIME, FATTR_MTIME_NOW, wanted.mtime, wanted.mtimensec)};
    if (valid & (FATTR_ATIME | FATTR_MTIME) &&
        utimensat(file(node), "", times, AT_EMPTY_PATH) != 0) {
        return nullptr;
    }
    return attributes(node);
}

Server::Answer Server::open_file(uint64_t node, uint32_t flags) {
    const int opened = open(path(node).c_str(), static_cast<int>(flags & (O_ACCMODE | O_TRUNC)));
    if (opened < 0) return nullptr;
    fuse_open_out out = {};
    out.fh = static_cast<uint64_t>(opened);
    return std::make_unique<Bytes>(bytes_of(out));
}

Server::Answer Server::open_folder(uint64_t node) {
    DIR* folder = opendir(path(node).c_str());
    if (!folder) return nullptr;
    OpenFolder opened;
    while (const dirent* entry = readdir(folder)) {
        opened.names.emplace_back(entry->d_name, entry->d_type);
    }
    closedir(folder);
    fuse_open_out out = {};
    out.fh = next_++;
    folders_[out.fh] = opened;
    return std::make_unique<Bytes>(bytes_of(out));
}

Server::Answer Server::read_file(const fuse_read_in& wanted) {
    auto bytes = std::make_unique<Bytes>(wanted.size);
    const ssize_t size = pread(static_cast<int>(wanted.fh), bytes->data(), bytes->size(),
                               static_cast<off_t>(wanted.offset));
    if (size < 0) return nullptr;
    bytes->resize(static_cast<size_t>(size));
    return bytes;
}

Server::Answer Server::read_folder(const fuse_read_in& wanted) {
    auto bytes = std::make_unique<Bytes>();
    const auto& names = folders_[wanted.fh].names;
    for (uint64_t at = wanted.offset; at < names.size(); at++) {
        fuse_dirent entry = {};
        entry.ino = at + 1;
        entry.off = at + 1;
        entry.namelen = static_cast<uint32_t>(names[at].first.size());
        entry.type = names[at].second;
        const size_t before = bytes->size();
        const size_t size = FUSE_DIRENT_ALIGN(FUSE_NAME_OFFSET + entry.namelen);
        if (before + size > wanted.size) break;
        bytes->resize(before + size);
        memcpy(bytes->data() + before, &entry, FUSE_NAME_OFFSET);
        memcpy(bytes->data() + before + FUSE_NAME_OFFSET, names[at].first.data(), entry.namelen);
    }
    return bytes;
}

Server::Answer Server::read_link(uint64_t node) {
    auto bytes = std::make_unique<Bytes>(4096);
    const ssize_t size = readlinkat(file(node), "", bytes->data(), bytes->size());
    if (size < 0) return nullptr;
    bytes->resize(static_cast<size_t>(size));
    return bytes;
}

Server::Answer Server::state_of_disk() {
    struct statvfs what;
    if (fstatvfs(file(FUSE_ROOT_ID), &what) != 0) return nullptr;
    fuse_statfs_out out = {};
    out.st.blocks = what.f_blocks;
    out.st.bfree = what.f_bfree;
    out.st.bavail = what.f_bavail;
    out.st.bsize = static_cast<uint32_t>(what.f_bsize);
    out.st.namelen = 255;
    return std::make_unique<Bytes>(bytes_of(out));
}

const char* after(const char* name) { return name + strlen(name) + 1; }

Server::Answer Server::answer(const fuse_in_header& question, const char* body) {
    const uint64_t node = question.nodeid;
    switch (question.opcode) {
        case FUSE_LOOKUP:
            return look_up(node, body);
        case FUSE_GETATTR:
            return attributes(node);
        case FUSE_SETATTR:
            return set_attributes(node, *reinterpret_cast<const fuse_setattr_in*>(body));
        case FUSE_READLINK:
            return read_link(node);
        case FUSE_SYMLINK:
            if (symlinkat(after(body), file(node), body) != 0) return nullptr;
            return look_up(node, body);
        case FUSE_MKNOD: {
            const auto* wanted = reinterpret_cast<const fuse_mknod_in*>(body);
            const char* name = body + sizeof *wanted;
            if (mknodat(file(node), name, wanted->mode, wanted->rdev) != 0) return nullptr;
            return look_up(node, name);
        }
        case FUSE_MKDIR: {
            const auto* wanted = reinterpret_cast<const fuse_mkdir_in*>(body);
            const char* name = body + sizeof *wanted;
            if (mkdirat(file(node), name, wanted->mode) != 0) return nullptr;
            return look_up(node, name);
        }
        case FUSE_UNLINK:
            return done(unlinkat(file(node), body, 0) == 0);
        case FUSE_RMDIR:
            return done(unlinkat(file(node), body, AT_REMOVEDIR) == 0);
        case FUSE_RENAME: {
            const auto* wanted = reinterpret_cast<const fuse_rename_in*>(body);
            const char* name = body + sizeof *wanted;
            return done(renameat(file(node), name, file(wanted->newdir), after(name)) == 0);
        }
        case FUSE_RENAME2: {
            const auto* wanted = reinterpret_cast<const fuse_rename2_in*>(body);
            const char* name = body + sizeof *wanted;
            return done(
                renameat2(file(node), name, file(wanted->newdir), after(name), wanted->flags) == 0);
        }
        case FUSE_LINK: {
            const auto* wanted = reinterpret_cast<const fuse_link_in*>(body);
            const char* name = body + sizeof *wanted;
            if (linkat(AT_FDCWD, path(wanted->oldnodeid).c_str(), file(node), name,
                       AT_SYMLINK_FOLLOW) != 0) {
                return nullptr;
            }
            return look_up(node, name);
        }
        case FUSE_OPEN:
            return open_file(node, reinterpret_cast<const fuse_open_in*>(body)->flags);
        case FUSE_OPENDIR:
            return open_folder(node);
        case FUSE_READ:
            return read_file(*reinterpret_cast<const fuse_read_in*>(body));
        case FUSE_READDIR:
            return read_folder(*reinterpret_cast<const fuse_read_in*>(body));
        case FUSE_WRITE: {
            const auto* wanted = reinterpret_cast<const fuse_write_in*>(body);
            const ssize_t size = pwrite(static_cast<int>(wanted->fh), body + sizeof *wanted,
                                        wanted->size, static_cast<off_t>(wanted->offset));
            if (size < 0) return nullptr;
            return std::make_unique<Bytes>(
                bytes_of(fuse_write_out{static_cast<uint32_t>(size), 0}));
        }
        case FUSE_STATFS:
            return state_of_disk();
        case FUSE_FSYNC:
        case FUSE_FSYNCDIR:
        case FUSE_FLUSH:
            return done(true);
        case FUSE_RELEASE:
            return done(
                close(static_cast<int>(reinterpret_cast<const fuse_release_in*>(body)->fh)) == 0);
        case FUSE_RELEASEDIR:
            return done(folders_.erase(reinterpret_cast<const fuse_release_in*>(body)->fh) == 1);
        case FUSE_INIT: {
            fuse_init_out out = {};
            out.major = FUSE_KERNEL_VERSION;
            out.minor = 31;
            out.max_write = 65536;
            return std::make_unique<Bytes>(bytes_of(out));
        }
        default:
            return unknown();
    }
}

bool is_counted(uint32_t what) {
    return what != FUSE_INIT && what != FUSE_RELEASE && what != FUSE_RELEASEDIR;
}

void Server::serve(const fuse_in_header& question, const char* body) {
    if (question.opcode == FUSE_FORGET) {
        return forget(question.nodeid, reinterpret_cast<const fuse_forget_in*>(body)->nlookup);
    }
    if (question.opcode == FUSE_BATCH_FORGET) {
        const auto* all = reinterpret_cast<const fuse_batch_forget_in*>(body);
        const auto* one = reinterpret_cast<const fuse_forget_one*>(all + 1);
        for (uint32_t left = all->count; left > 0; left--, one++) forget(one->nodeid, one->nlookup);
        return;
    }
    if (question.opcode == FUSE_INTERRUPT) return;
    const int call = is_counted(question.opcode) ? ++faults_.calls : 0;
    const Faults::How how = faults_.how;
    const bool hit = call > 0 && how != Faults::never &&
                     (call == faults_.at || (how == Faults::from_then && call > faults_.at));
    if (hit && how == Faults::slow_once) {
        usleep(static_cast<useconds_t>(faults_.delay) * 1000);
    }
    Answer said;
    errno = faults_.error;
    const bool fails = hit && how != Faults::slow_once;
    if (!fails || how == Faults::once_late) said = answer(question, body);
    int error = said ? 0 : errno;
    if (fails) {
        error = faults_.error;
        said.reset();
    }
    Bytes out(sizeof(fuse_out_header));
    if (said) out.insert(out.end(), said->begin(), said->end());
    const fuse_out_header header = {static_cast<uint32_t>(out.size()), -error, question.unique};
    memcpy(out.data(), &header, sizeof header);
    (void)!write(device_, out.data(), out.size());
}

void Server::run() {
    std::vector<char> buffer(256 * 1024);
    for (;;) {
        const ssize_t size = read(device_, buffer.data(), buffer.size());
        if (size < 0 && errno == EINTR) continue;
        if (size < static_cast<ssize_t>(sizeof(fuse_in_header))) _exit(0);
        fuse_in_header question;
        memcpy(&question, buffer.data(), sizeof question);
        serve(question, buffer.data() + sizeof question);
    }
}

}  // namespace

pid_t mount_faulty_file_system(const std::string& folder, const std::string& behind,
                               Faults** faults) {
    if (!enter_own_mounts()) return 0;
    const int device = open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const int root = open(behind.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (device < 0 || root < 0) return 0;
    void* shared =
        mmap(nullptr, sizeof(Faults), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    *faults = new (shared) Faults;
    const std::string options = "fd=" + std::to_string(device) +
                                ",rootmode=40000,user_id=" + std::to_string(geteuid()) +
                                ",group_id=" + std::to_string(getegid()) + ",default_permissions";
    pid_t server = 0;
    if (mount("faulty", folder.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) == 0) {
        server = fork();
        if (server == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            umask(0);
            Server(device, root, *faults).run();
        }
    }
    close(device);
    close(root);
    return server;
}

}  // namespace test
