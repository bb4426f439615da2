#include "operations/trash.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <time.h>

#include <vector>

#include "operations/folder.h"
#include "operations/work.h"

namespace operations {

namespace {

constexpr const char* info_suffix = ".trashinfo";
constexpr int most_names = 100000;

struct TrashFolder {
    std::string path;
    std::string top;  // what paths are written relative to; empty for absolute ones
};

std::string home_trash() {
    const char* data = getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return std::string(data) + "/Trash";
    const char* home = getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/Trash";
}

// The device of the path or of the nearest folder above it that is there.
dev_t device_of(std::string path) {
    struct stat what;
    while (stat(path.c_str(), &what) != 0 && path != "/") path = ParentOf(path);
    return what.st_dev;
}

std::string top_of_volume(std::string folder, dev_t device) {
    while (folder != "/" && device_of(ParentOf(folder)) == device) folder = ParentOf(folder);
    return folder;
}

bool is_own_folder(const std::string& path) {
    struct stat what;
    return lstat(path.c_str(), &what) == 0 && S_ISDIR(what.st_mode) && what.st_uid == geteuid();
}

bool is_shared_trash(const std::string& path) {
    struct stat what;
    return lstat(path.c_str(), &what) == 0 && S_ISDIR(what.st_mode) && (what.st_mode & S_ISVTX);
}

// In the order in which they are tried. `path` has no links above its last component.
std::vector<TrashFolder> trash_folders(const std::string& path) {
    std::vector<TrashFolder> folders;
    const std::string parent = ParentOf(path);
    const dev_t device = device_of(parent);
    if (device_of(home_trash()) == device) folders.push_back({home_trash(), ""});
    const std::string top = top_of_volume(parent, device);
    const std::string start = top == "/" ? "" : top, user = std::to_string(getuid());
    if (is_shared_trash(start + "/.Trash")) {
        folders.push_back({start + "/.Trash/" + user, start});
    }
    folders.push_back({start + "/.Trash-" + user, start});
    return folders;
}

bool make_trash(const std::string& trash) {
    for (const char* part : {"", "/info", "/files"}) {
        if (!MakeFolders(trash + part) || !is_own_folder(trash + part)) return false;
    }
    return true;
}

// As an address has it; a slash stays.
std::string escaped(const std::string& path) {
    std::string text;
    for (const char byte : path) {
        if (isalnum(static_cast<unsigned char>(byte)) || strchr("/-_.~", byte)) {
            text += byte;
        } else {
            char code[4];
            snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(byte));
            text += code;
        }
    }
    return text;
}

std::string info_text(const std::string& path, const std::string& top) {
    const time_t now = time(nullptr);
    struct tm local;
    char date[32];
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", localtime_r(&now, &local));
    const std::string where = top.empty() ? path : path.substr(top.size() + 1);
    return "[Trash Info]\nPath=" + escaped(where) + "\nDeletionDate=" + date + "\n";
}

std::string trash_name(const std::string& name, int attempt) {
    const std::string number = attempt < 2 ? "" : "." + std::to_string(attempt);
    const size_t most = NAME_MAX - strlen(info_suffix) - number.size();
    return name.substr(0, most) + number;
}

// Takes a free name in the trash by writing its info. False with errno.
bool take_name(const TrashFolder& trash, const std::string& path, Trashed* trashed) {
    for (int attempt = 1; attempt < most_names; attempt++) {
        const std::string name = trash_name(NameOf(path), attempt);
        *trashed = {trash.path + "/files/" + name, trash.path + "/info/" + name + info_suffix};
        struct stat what;
        if (Look(AT_FDCWD, trashed->file.c_str(), &what)) continue;
        Descriptor info(open(trashed->info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!info && errno == EEXIST) continue;
        if (!info) return false;
        const std::string text = info_text(path, trash.top);
        if (WriteAll(info.get(), text.data(), text.size()) && info.close()) return true;
        unlink(trashed->info.c_str());
        return false;
    }
    errno = EEXIST;
    return false;
}

// 0 or an error number.
int put(const TrashFolder& trash, const std::string& path,
        const std::function<bool(const Trashed&)>& before, Trashed* trashed) {
    // Something without an info may take the name meanwhile.
    for (int attempt = 0; attempt < most_names; attempt++) {
        if (!take_name(trash, path, trashed)) return errno;
        if (!before(*trashed)) {
            unlink(trashed->info.c_str());
            return ECANCELED;
        }
        if (MoveFree(AT_FDCWD, path, AT_FDCWD, trashed->file)) return 0;
        const int error = errno;
        unlink(trashed->info.c_str());
        if (error != EEXIST) return error;
    }
    return EEXIST;
}

}  // namespace

bool PutInTrash(const std::string& path, const std::function<bool(const Trashed&)>& before,
                Trashed* trashed, std::string* problem) {
    char* folder = realpath(ParentOf(path).c_str(), nullptr);
    int error = errno;
    if (folder) {
        const std::string parent = strcmp(folder, "/") == 0 ? "" : folder;
        free(folder);
        const std::string plain = parent + "/" + NameOf(path);
        error = ENOENT;
        for (const TrashFolder& trash : trash_folders(plain)) {
            error = make_trash(trash.path) ? put(trash, plain, before, trashed) : errno;
            if (error == 0) return true;
            if (error == ECANCELED) break;
        }
    }
    *problem = "cannot move " + QuotedName(path) + " to the trash: " + strerror(error);
    return false;
}

bool TakeFromTrash(const Trashed& trashed, const std::string& path) {
    if (!MoveFree(AT_FDCWD, trashed.file, AT_FDCWD, path)) return false;
    unlink(trashed.info.c_str());
    return true;
}

}  // namespace operations
