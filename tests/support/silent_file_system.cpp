#include "support/silent_file_system.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/fuse.h>
#include <sched.h>
#include <signal.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <vector>

namespace test {

namespace {

const uint64_t file_node = 2;
const uint64_t for_ever = 3600;
// The files in the file system that answers. Their nodes count from file_node.
const std::string names[] = {"a.txt", "b.txt", "c.txt"};
const std::string text = "A text from another disk\n";

template <typename Body>
void answer(int device, uint64_t unique, const Body& body) {
    char bytes[sizeof(fuse_out_header) + sizeof(Body)];
    const fuse_out_header header = {sizeof bytes, 0, unique};
    memcpy(bytes, &header, sizeof header);
    memcpy(bytes + sizeof header, &body, sizeof body);
    (void)!write(device, bytes, sizeof bytes);
}

void answer_with(int device, uint64_t unique, int error, const std::string& bytes) {
    const auto length = static_cast<uint32_t>(sizeof(fuse_out_header) + bytes.size());
    const fuse_out_header header = {length, -error, unique};
    const std::string all(reinterpret_cast<const char*>(&header), sizeof header);
    (void)!write(device, (all + bytes).data(), length);
}

fuse_attr attributes_of(uint64_t node, uint64_t size = 100000) {
    fuse_attr attributes = {};
    attributes.ino = node;
    attributes.mode = node >= file_node ? S_IFREG | 0644 : S_IFDIR | 0755;
    attributes.nlink = 1;
    attributes.size = node >= file_node ? size : 0;
    attributes.mtime = 1700000000;
    return attributes;
}

void answer_one(int device, const fuse_in_header& question, Silence silence) {
    switch (question.opcode) {
        case FUSE_INIT: {
            fuse_init_out out = {};
            out.major = FUSE_KERNEL_VERSION;
            out.minor = 31;
            out.max_write = 65536;
            return answer(device, question.unique, out);
        }
        case FUSE_GETATTR: {
            fuse_attr_out out = {};
            out.attr_valid = for_ever;
            out.attr = attributes_of(question.nodeid);
            return answer(device, question.unique, out);
        }
        case FUSE_LOOKUP: {
            if (silence == Silence::at_lookup) return;
            fuse_entry_out out = {};
            out.nodeid = file_node;
            out.entry_valid = out.attr_valid = for_ever;
            out.attr = attributes_of(file_node);
            return answer(device, question.unique, out);
        }
        case FUSE_OPEN:
            if (silence == Silence::at_read) answer(device, question.unique, fuse_open_out{});
            return;
        default:
            return;
    }
}

uint64_t node_of(const std::string& name) {
    uint64_t node = file_node;
    for (const std::string& known : names) {
        if (name == known) return node;
        node++;
    }
    return 0;
}

std::string listing() {
    std::string bytes;
    uint64_t place = 0;
    for (const std::string& name : names) {
        fuse_dirent entry = {};
        entry.ino = file_node + place;
        entry.off = ++place;
        entry.namelen = static_cast<uint32_t>(name.size());
        entry.type = S_IFREG >> 12;
        bytes.append(reinterpret_cast<const char*>(&entry), FUSE_NAME_OFFSET).append(name);
        bytes.resize(FUSE_DIRENT_ALIGN(bytes.size()));
    }
    return bytes;
}

// `body` is the part of the request after its header.
void answer_truly(int device, const fuse_in_header& question, const char* body) {
    const uint64_t unique = question.unique;
    fuse_read_in range = {};
    switch (question.opcode) {
        case FUSE_INIT:
            return answer_one(device, question, Silence::when_stopped);
        case FUSE_FORGET:
        case FUSE_BATCH_FORGET:
        case FUSE_INTERRUPT:
            return;
        case FUSE_GETATTR: {
            fuse_attr_out out = {};
            out.attr = attributes_of(question.nodeid, text.size());
            return answer(device, unique, out);
        }
        case FUSE_LOOKUP: {
            fuse_entry_out out = {};
            out.nodeid = node_of(body);
            out.attr = attributes_of(out.nodeid, text.size());
            return out.nodeid ? answer(device, unique, out)
                              : answer_with(device, unique, ENOENT, "");
        }
        case FUSE_OPEN:
        case FUSE_OPENDIR:
            return answer(device, unique, fuse_open_out{});
        case FUSE_READ:
        case FUSE_READDIR:
            memcpy(&range, body, sizeof range);
            if (range.offset) return answer_with(device, unique, 0, "");
            return answer_with(device, unique, 0, question.opcode == FUSE_READ ? text : listing());
        case FUSE_RELEASE:
        case FUSE_RELEASEDIR:
            return answer_with(device, unique, 0, "");
        default:
            return answer_with(device, unique, ENOSYS, "");
    }
}

[[noreturn]] void serve(int device, Silence silence) {
    std::vector<char> buffer(256 * 1024);
    for (;;) {
        const ssize_t size = read(device, buffer.data(), buffer.size());
        if (size < static_cast<ssize_t>(sizeof(fuse_in_header))) _exit(0);
        fuse_in_header question;
        memcpy(&question, buffer.data(), sizeof question);
        if (silence == Silence::when_stopped) {
            answer_truly(device, question, buffer.data() + sizeof question);
        } else {
            answer_one(device, question, silence);
        }
    }
}

// Works as root of a user namespace, or as root with the right to mount.
bool enter_namespace() {
    const std::string user = std::to_string(getuid()), group = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    } else if (unshare(CLONE_NEWNS) != 0) {
        return false;
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace

pid_t mount_silent_file_system(const std::string& folder, Silence silence) {
    if (!enter_namespace()) return 0;
    const int device = open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (device < 0) return 0;
    const std::string options =
        "fd=" + std::to_string(device) + ",rootmode=40000,user_id=0,group_id=0";
    pid_t server = 0;
    if (mount("silent", folder.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) == 0) {
        server = fork();
        if (server == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            alarm(240);
            serve(device, silence);
        }
    }
    // The connection lasts as long as some process holds this descriptor.
    close(device);
    return server;
}

}  // namespace test
