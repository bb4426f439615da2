#include "file_steps/trash_folders.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>

#include "file_steps/folder.h"
#include "file_steps/visible_text.h"
#include "file_steps/work.h"

namespace operations {

namespace {

std::string home_trash() {
    const char* data = getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return std::string(data) + "/Trash";
    const char* home = getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/Trash";
}

enum class Place { here, elsewhere, unknown };

// Whether the path, or its nearest existing parent, is on the device.
Place place_of(std::string path, dev_t device) {
    struct stat what;
    while (stat(path.c_str(), &what) != 0) {
        if (!means_missing(errno) || path == "/") return Place::unknown;
        path = parent_of(path);
    }
    return what.st_dev == device ? Place::here : Place::elsewhere;
}

// The highest parent folder that is still on the same mount.
std::string top_of_volume(std::string path, uint64_t mount) {
    while (path != "/") {
        const std::string parent = parent_of(path);
        const Descriptor above(open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!above || mount_of(above.get()) != mount) break;
        path = parent;
    }
    return path;
}

bool is_shared_trash(const std::string& path) {
    struct stat what;
    return lstat(path.c_str(), &what) == 0 && S_ISDIR(what.st_mode) && (what.st_mode & S_ISVTX);
}

// Opens a part of a trash.
Descriptor open_part(const std::string& path, std::string* problem) {
    const std::string name = in_quotes(path);
    if (!make_folders(path)) {
        *problem = translated("cannot make %s: %s", {name, error_text(errno)});
        return Descriptor();
    }
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat what;
    if (!folder) {
        const bool other = errno == ENOTDIR || errno == ELOOP;
        *problem = other ? translated("%s, where the trash should be, is not a folder", {name})
                         : translated("cannot open %s: %s", {name, error_text(errno)});
    } else if (fstat(folder.get(), &what) != 0) {
        *problem = translated("cannot read %s: %s", {name, error_text(errno)});
    } else if (what.st_uid != geteuid()) {
        *problem = translated("the trash %s belongs to somebody else", {name});
    }
    if (!problem->empty()) folder.close();
    return folder;
}

}  // namespace

std::vector<TrashFolder> trash_folders_of(int folder, const std::string& path) {
    std::vector<TrashFolder> folders;
    struct stat what;
    const Place home =
        fstat(folder, &what) == 0 ? place_of(home_trash(), what.st_dev) : Place::unknown;
    // If nobody can tell, the move itself shows whether the home's trash is on this volume.
    if (home != Place::elsewhere) folders.push_back({home_trash(), "", home == Place::here});
    const std::string top = top_of_volume(path, mount_of(folder));
    const std::string start = top == "/" ? "" : top, user = std::to_string(getuid());
    if (is_shared_trash(start + "/.Trash")) {
        folders.push_back({start + "/.Trash/" + user, start, false});
    }
    folders.push_back({start + "/.Trash-" + user, start, false});
    return folders;
}

OpenTrash open_trash_folder(const TrashFolder& trash) {
    OpenTrash open;
    const Descriptor whole = open_part(trash.path, &open.problem);
    if (open.problem.empty()) open.info = open_part(trash.path + "/info", &open.problem);
    if (open.problem.empty()) open.files = open_part(trash.path + "/files", &open.problem);
    return open;
}

}  // namespace operations
