#include "corefoundation/defaults_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include "corefoundation/defaults_lock.h"
#include "corefoundation/property_lists.h"

namespace {

const off_t largest_file = 16 << 20;

// The path with its links resolved; empty when a link leads nowhere.
std::string real_path(const std::string& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) return path;
    char* found = realpath(path.c_str(), nullptr);
    const std::string real = found ? found : "";
    free(found);
    return real;
}

// Makes the defaults folder and its parents, which are missing only on a user's first run.
void make_folders(const std::string& path) {
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        mkdir(path.substr(0, slash).c_str(), 0755);
    }
    mkdir(path.c_str(), 0755);
}

bool write_all(int file, const char* bytes, size_t length) {
    while (length) {
        const ssize_t count = write(file, bytes, length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        length -= (size_t)count;
    }
    return true;
}

// An empty file is an empty dictionary.
NSDictionary* dictionary_from(NSData* data) {
    return [data length] ? read_dictionary(data) : [NSDictionary dictionary];
}

// A number equals the same number stored by `defaults write`, which stores it as a string.
bool is_same(id stored, id value) {
    if ([stored isEqual:value]) return true;
    return [stored isKindOfClass:[NSString class]] && [value isKindOfClass:[NSNumber class]] &&
           [[value stringValue] isEqual:stored];
}

NSDictionary* merged(NSDictionary* values, NSDictionary* changes) {
    NSMutableDictionary* result = [NSMutableDictionary dictionaryWithDictionary:values];
    for (NSString* key in changes) {
        const id value = [changes objectForKey:key];
        if (value == [NSNull null])
            [result removeObjectForKey:key];
        else if (!is_same([values objectForKey:key], value))
            [result setObject:value forKey:key];
    }
    return result;
}

NSData* serialized(NSDictionary* values) {
    return [NSPropertyListSerialization dataWithPropertyList:values
                                                      format:NSPropertyListXMLFormat_v1_0
                                                     options:0
                                                       error:nullptr];
}

}  // namespace

bool DefaultsFile::Stamp::operator==(const Stamp& other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
}

DefaultsFile::DefaultsFile(NSString* domain) : values_([NSDictionary new]), stamp_{} {
    const char* name = [domain UTF8String];
    folder_ = [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation];
    path_ = folder_ + "/" + name + ".plist";
}

DefaultsFile::~DefaultsFile() { [values_ release]; }

// All zero when there is no file.
bool DefaultsFile::stamp_of_file(Stamp* stamp) const {
    *stamp = {};
    struct stat status;
    if (stat(path_.c_str(), &status) != 0) return errno == ENOENT;
    if (!S_ISREG(status.st_mode) || status.st_size > largest_file) return false;
    *stamp = {status.st_dev, status.st_ino, status.st_size, status.st_mtim};
    return true;
}

bool DefaultsFile::refresh() {
    Stamp now;
    if (!stamp_of_file(&now)) return false;
    if (was_read_ && now == stamp_) return true;

    @autoreleasepool {
        NSDictionary* read = [NSDictionary dictionary];
        if (now.inode) {
            NSString* path = [NSString stringWithUTF8String:path_.c_str()];
            NSData* data = [NSData dataWithContentsOfFile:path];
            read = data ? dictionary_from(data) : nil;
        }
        if (!read) return false;
        [values_ release];
        values_ = [read copy];
    }
    stamp_ = now;
    was_read_ = true;
    return true;
}

bool DefaultsFile::replace(NSData* data) {
    const std::string target = real_path(path_);
    if (target.empty()) return false;
    std::string temporary = target + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) return false;
    struct stat before;
    bool done = stat(target.c_str(), &before) != 0 || fchmod(file, before.st_mode & 07777) == 0;
    done = done && write_all(file, (const char*)[data bytes], [data length]) && fsync(file) == 0;
    done = close(file) == 0 && done;
    done = done && rename(temporary.c_str(), target.c_str()) == 0;
    if (!done) unlink(temporary.c_str());
    return done;
}

DefaultsFile::Step DefaultsFile::try_to_merge(NSDictionary* changes) {
    if (!refresh()) return Step::Failed;
    NSDictionary* result = merged(values_, changes);
    if ([result isEqual:values_]) return Step::Done;
    NSData* data = serialized(result);
    if (!data) return Step::Failed;

    make_folders(folder_);
    const DefaultsLock lock(folder_);
    Stamp now;
    if (!lock.held() || !stamp_of_file(&now)) return Step::Failed;
    if (!(now == stamp_)) return Step::Again;
    return replace(data) ? Step::Done : Step::Failed;
}

// No code of the toolkit runs while the lock is held: code that uses the toolkit's defaults for the
// first time takes the same lock, and would wait for it.
bool DefaultsFile::merge(NSDictionary* changes) {
    Step step = Step::Again;
    for (int attempt = 0; attempt < 100 && step == Step::Again; attempt++) {
        @autoreleasepool {
            step = try_to_merge(changes);
        }
    }
    return step == Step::Done && refresh();
}
