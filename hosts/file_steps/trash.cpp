#include "file_steps/trash.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/random.h>
#include <time.h>

#include "file_steps/folder.h"
#include "file_steps/trash_folders.h"
#include "file_steps/visible_text.h"
#include "file_steps/work.h"

namespace operations {

namespace {

constexpr const char* info_suffix = ".trashinfo";
constexpr int counted_names = 64, most_names = 1000;

// Escapes a path as in a URL; slashes stay.
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

// Counts at first; if many of the names are taken, a random number finds a free one at once.
std::string number_of(int attempt) {
    if (attempt < 2) return "";
    uint32_t number = 0;
    if (attempt > counted_names && getrandom(&number, sizeof number, 0) == sizeof number) {
        return "." + std::to_string(number);
    }
    return "." + std::to_string(attempt);
}

std::string trash_name(const std::string& name, int attempt) {
    const std::string number = number_of(attempt);
    const size_t most = NAME_MAX - strlen(info_suffix) - number.size();
    return name.substr(0, most) + number;
}

// The way of one thing into one trash.
class Way {
  public:
    Way(const Thing& thing, const TrashFolder& trash, const std::string& path)
        : thing_(thing), trash_(trash), path_(path), open_(open_trash_folder(trash)) {}

    const std::string& problem() const { return open_.problem; }
    // Returns 0 or an error number: EXDEV when the trash is not on the volume of the thing,
    // ECANCELED when `before` cancels, ESTALE when the name now belongs to another file.
    int put(const std::function<bool(const Trashed&)>& before, Trashed* trashed);

  private:
    bool take_name(int attempt);
    int look_for_thing(int folder, const std::string& name);
    int go();

    const Thing& thing_;
    const TrashFolder& trash_;
    const std::string& path_;  // of the thing
    OpenTrash open_;
    std::string name_, info_name_;
};

// Takes the name by writing its info file. False with errno: EEXIST when the name is taken.
bool Way::take_name(int attempt) {
    name_ = trash_name(thing_.name, attempt);
    info_name_ = name_ + info_suffix;
    struct stat what;
    if (look_at(open_.files.get(), name_.c_str(), &what)) {
        errno = EEXIST;
        return false;
    }
    if (!means_missing(errno)) return false;
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    Descriptor info(openat(open_.info.get(), info_name_.c_str(), flags, 0600));
    if (!info) return false;
    const std::string text = info_text(path_, trash_.top);
    if (write_fully(info.get(), text.data(), text.size()) && info.close()) return true;
    const int error = errno;
    unlinkat(open_.info.get(), info_name_.c_str(), 0);
    errno = error;
    return false;
}

// Returns 0, ESTALE when the name belongs to another file, or the error number when that is
// unknown.
int Way::look_for_thing(int folder, const std::string& name) {
    struct stat what;
    if (!look_at(folder, name.c_str(), &what)) return errno;
    const bool is_it = what.st_ino == thing_.what.st_ino &&
                       (what.st_mode & S_IFMT) == (thing_.what.st_mode & S_IFMT);
    return is_it ? 0 : ESTALE;
}

// Moves the thing to the name that was taken. Returns 0 or an error number.
int Way::go() {
    const int error = look_for_thing(thing_.folder, thing_.name);
    if (error != 0) return error;
    if (!move_free(thing_.folder, thing_.name, open_.files.get(), name_)) return errno;
    if (look_for_thing(open_.files.get(), name_) != ESTALE) return 0;
    // The file was exchanged for another just before the move.
    move_free(open_.files.get(), name_, thing_.folder, thing_.name);
    return ESTALE;
}

int Way::put(const std::function<bool(const Trashed&)>& before, Trashed* trashed) {
    for (int attempt = 1; attempt < most_names; attempt++) {
        int error = take_name(attempt) ? 0 : errno;
        if (error == 0) {
            *trashed = {trash_.path + "/files/" + name_, trash_.path + "/info/" + info_name_};
            error = before(*trashed) ? go() : ECANCELED;
            if (error == 0) return 0;
            unlinkat(open_.info.get(), info_name_.c_str(), 0);
        }
        // A file without an info file may have taken the name since.
        if (error != EEXIST) return error;
    }
    return EEXIST;
}

std::string in_words(int error) {
    if (error == ESTALE) return translated("it was replaced by another file");
    if (error == EEXIST) return translated("the trash has no free name for it");
    return error == ECANCELED ? translated("stopped") : error_text(error);
}

// If the shared trash of a volume fails, the user's own trash there takes its place; no other trash
// takes the place of the home's.
bool is_final(const TrashFolder& trash, const std::string& problem) {
    return !problem.empty() && trash.is_home;
}

std::string path_in(const std::string& folder, const std::string& name) {
    return (folder == "/" ? "" : folder) + "/" + name;
}

}  // namespace

bool move_into_trash(const Thing& thing, const std::function<bool(const Trashed&)>& before,
                     Trashed* trashed, std::string* problem) {
    const auto because = [&](const std::string& reason) {
        *problem = translated("cannot move %s to the trash: %s", {quoted_name(thing.name), reason});
    };
    const std::string folder = path_of_folder(thing.folder), path = path_in(folder, thing.name);
    if (folder.empty()) {
        because(error_text(errno));
        return false;
    }
    for (const TrashFolder& trash : trash_folders_of(thing.folder, folder)) {
        Way way(thing, trash, path);
        because(way.problem());
        if (is_final(trash, way.problem())) return false;
        if (!way.problem().empty()) continue;
        const int error = way.put(before, trashed);
        if (error == 0) return true;
        because(in_words(error));
        // After any other error the move may be half done.
        if (error != EXDEV) return false;
    }
    return false;
}

std::string why_no_trash(int folder) {
    const std::string path = path_of_folder(folder);
    if (path.empty()) return error_text(errno);
    std::string problem;
    for (const TrashFolder& trash : trash_folders_of(folder, path)) {
        problem = open_trash_folder(trash).problem;
        if (problem.empty() || is_final(trash, problem)) break;
    }
    return problem;
}

bool is_place_in_trash(const Trashed& place) {
    const std::string name = name_in_path(place.file), folder = parent_of(place.file);
    if (name.empty() || name == "." || name == "..") return false;
    if (!place.file.starts_with('/') || name_in_path(folder) != "files") return false;
    return place.info == parent_of(folder) + "/info/" + name + info_suffix;
}

bool take_from_trash(const Trashed& trashed, int folder, const std::string& name) {
    if (!move_free(AT_FDCWD, trashed.file, folder, name)) return false;
    unlink(trashed.info.c_str());
    return true;
}

}  // namespace operations
