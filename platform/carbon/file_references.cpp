#include "carbon/file_references.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/random.h>
#include <unistd.h>

#include <array>

#include "carbon/folder_listing.h"
#include "carbon/unreached_files.h"
#include "corefoundation/silent_disks.h"
#include "desktop/moments.h"

namespace files {

namespace {

const size_t table_size = 4096;
// A reused entry gives back path storage that is longer than this.
const size_t kept_capacity = 512;

// What the 80 bytes of an FSRef hold. Every reference made has a generation of its own.
struct Reference {
    uint64_t process_key;
    uint64_t generation;
};
static_assert(sizeof(Reference) <= sizeof(FSRef));

struct Table {
    std::array<File, table_size> files = {};
    uint64_t last_generation = 0;
    uint64_t process_key = 0;

    Table() {
        if (getrandom(&process_key, sizeof process_key, 0) != sizeof process_key) {
            process_key = reinterpret_cast<uintptr_t>(this);
        }
        process_key |= 1;  // bytes that are all zero are never a reference
    }

    File& file(uint64_t generation) { return files[generation % table_size]; }
};

Table& table() {
    static Table& table = *new Table;
    return table;
}

// What a look has found.
struct Seen {
    mode_t mode;  // an entry of a listing has no permission bits
    uint32_t device_major, device_minor;
    bool has_information;
    FinderInformation information;
    bool is_silent = false;
};

// Nothing is known of what is on a disk that does not answer. It is shown as a folder, whose level
// says how it is.
void see_silence(Seen* seen) {
    *seen = {};
    seen->mode = S_IFDIR;
    seen->has_information = true;
    seen->is_silent = true;
}

// Looks at the path. False, with errno set, when nothing is there.
bool look(const char* path, Seen* seen) {
    struct statx status;
    if (statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
              STATX_TYPE | STATX_MODE, &status) != 0) {
        return false;
    }
    seen->mode = status.stx_mode;
    seen->device_major = status.stx_dev_major;
    seen->device_minor = status.stx_dev_minor;
    seen->has_information = false;
    return true;
}

// Takes what the last listing of a folder knows about this entry. Finder information that is not
// known yet is read here, since it is asked for soon in any case. When it cannot be read, another
// file system may begin at the entry: then the listing is not used.
bool see_in_listing(const char* path, size_t length, int64_t now, Seen* seen) {
    ListedEntry entry;
    if (!take_listed_entry(path, length, now, &entry)) return false;
    const bool is_link = entry.type == DT_LNK;
    if (!is_link && entry.attribute == Attributes::UNKNOWN &&
        (keeps_no_attributes(entry.device_major, entry.device_minor, now) ||
         !read_finder_information(path, &entry.information))) {
        return false;
    }
    seen->mode = is_link ? S_IFLNK : entry.type == DT_DIR ? S_IFDIR : S_IFREG;
    seen->device_major = entry.device_major;
    seen->device_minor = entry.device_minor;
    seen->has_information = true;
    seen->information = entry.information;
    return true;
}

void remember(const Seen& seen, int64_t now, unsigned questions, File* file) {
    file->mode = seen.mode;
    file->device_major = seen.device_major;
    file->device_minor = seen.device_minor;
    file->seen_at = now;
    file->unanswered = questions;
    file->knows_finder_information = seen.has_information;
    if (seen.has_information) file->finder_information = seen.information;
    file->is_silent = seen.is_silent;
    file->knows_invisible = seen.is_silent;
    file->invisible = false;
}

void keep_path(const char* path, size_t length, File* file) {
    if (file->path.capacity() > kept_capacity && length <= kept_capacity) {
        std::string().swap(file->path);
    }
    file->path.assign(path, length);
    const char* slash = static_cast<const char*>(memrchr(path, '/', length));
    // The root folder is its own name.
    file->name_offset = length > 1 && slash ? static_cast<uint32_t>(slash - path) + 1 : 0;
}

bool answers_from_last_look(File* file, Question question) {
    if (!(file->unanswered & question)) return false;
    file->unanswered &= ~static_cast<unsigned>(question);
    return milliseconds_now() - file->seen_at < one_moment;
}

// `path` made absolute and without slashes at its end; empty when there is no current folder.
std::string absolute_path(const char* path) {
    std::string result;
    if (*path != '/') {
        char* current = getcwd(nullptr, 0);
        if (!current) return result;
        result = current;
        free(current);
        if (result.back() != '/') result += '/';
    }
    result += path;
    while (result.size() > 1 && result.back() == '/') result.pop_back();
    return result;
}

// Null when the reference is stale or foreign.
File* known_file(const FSRef& ref) {
    Reference reference;
    memcpy(&reference, ref.hidden, sizeof reference);
    Table& all = table();
    File& file = all.file(reference.generation);
    const bool known = reference.process_key == all.process_key && reference.generation != 0 &&
                       file.generation == reference.generation;
    return known ? &file : nullptr;
}

// Questions that usually follow at once when a reference is made.
const unsigned usual_questions = ITEM_INFO | DISPLAY_NAME | CATALOG_INFO | ALIAS;

// A path with a slash at its end must lead to a folder or to a link to one.
OSErr folder_error(const char* path) {
    if (is_silent_target(path)) return noErr;
    struct stat status;
    if (stat(path, &status) != 0) return error_from_errno(errno);
    return S_ISDIR(status.st_mode) ? noErr : dirNFErr;
}

bool needs_tidying(const char* path, size_t length) {
    return path[0] != '/' || (length > 1 && path[length - 1] == '/');
}

}  // namespace

OSErr error_from_errno(int code) {
    switch (code) {
        case EACCES:
        case EPERM:
            return afpAccessDenied;
        case ENAMETOOLONG:
            return bdNamErr;
        case ENOMEM:
            return memFullErr;
        case EIO:
            return ioErr;
        default:
            return fnfErr;
    }
}

OSErr make_reference(const char* path, size_t length, unsigned questions, FSRef* ref,
                     mode_t* mode) {
    Seen seen;
    const int64_t now = milliseconds_now();
    if (!see_in_listing(path, length, now, &seen)) {
        if (is_silent_entry(path, length)) {
            see_silence(&seen);
        } else if (!look(path, &seen)) {
            return error_from_errno(errno);
        }
    }

    Table& all = table();
    const Reference reference = {all.process_key, ++all.last_generation};
    File& file = all.file(reference.generation);
    file.generation = reference.generation;
    keep_path(path, length, &file);
    // ALIAS needs no second look at a link: reading the link shows whether it is still there. Any
    // other file needs another look.
    if (!S_ISLNK(seen.mode)) questions &= ~static_cast<unsigned>(ALIAS);
    remember(seen, now, questions, &file);

    memcpy(ref->hidden, &reference, sizeof reference);
    memset(ref->hidden + sizeof reference, 0, sizeof ref->hidden - sizeof reference);
    *mode = file.mode;
    return noErr;
}

File* file_for(const FSRef* ref, Question question, OSErr* error) {
    if (!ref) return *error = paramErr, nullptr;
    File* known = known_file(*ref);
    if (!known) return *error = fnfErr, nullptr;
    File& file = *known;
    if (!answers_from_last_look(&file, question)) {
        Seen seen;
        if (is_silent_entry(file.path)) {
            see_silence(&seen);
        } else if (!look(file.path.c_str(), &seen)) {
            return *error = error_from_errno(errno), nullptr;
        }
        // The other questions still belonged to the look before.
        remember(seen, milliseconds_now(), 0, &file);
    }
    *error = noErr;
    return &file;
}

const std::string* kept_path(const FSRef& ref) {
    const File* file = known_file(ref);
    return file ? &file->path : nullptr;
}

OSErr make_reference_again(const std::string& path, FSRef* ref) {
    mode_t mode;
    return make_reference(path.c_str(), path.size(), usual_questions, ref, &mode);
}

}  // namespace files

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
    const char* text = reinterpret_cast<const char*>(path);
    if (!text || !ref) return paramErr;
    size_t length = strlen(text);
    if (length == 0) return fnfErr;
    const bool folder_wanted = text[length - 1] == '/';

    std::string tidy;
    if (files::needs_tidying(text, length)) {
        tidy = files::absolute_path(text);
        if (tidy.empty()) return fnfErr;
        text = tidy.c_str();
        length = tidy.size();
    }
    if (length >= PATH_MAX) return pathTooLongErr;

    mode_t mode;
    OSErr error = folder_wanted ? files::folder_error(text) : OSErr{noErr};
    if (error == noErr)
        error = files::make_reference(text, length, files::usual_questions, ref, &mode);
    if (error != noErr) {
        files::note_unreached(text, error == dirNFErr ? ENOTDIR : errno);
        return error;
    }
    if (isDirectory) *isDirectory = S_ISDIR(mode);
    return noErr;
}

OSStatus FSRefMakePath(const FSRef* ref, UInt8* path, UInt32 size) {
    if (!path) return paramErr;
    OSErr error;
    const files::File* file = files::file_for(ref, files::PATH, &error);
    if (!file) return error;
    if (file->path.size() >= size) return pathTooLongErr;
    memcpy(path, file->path.c_str(), file->path.size() + 1);
    return noErr;
}
