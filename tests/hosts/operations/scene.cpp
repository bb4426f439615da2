#include "hosts/operations/scene.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "file_steps/folder.h"
#include "support/temp_folder.h"

namespace test {

namespace {

std::string describe(const std::string& path, const struct stat& what) {
    std::string text = std::to_string(what.st_mode) + " ";
    if (S_ISREG(what.st_mode)) return text + read_file(path);
    if (!S_ISLNK(what.st_mode)) return text;
    char target[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), target, sizeof target);
    return text + std::string(target, size < 0 ? 0 : static_cast<size_t>(size));
}

void add_states(const std::string& folder, const std::string& prefix, bool times, State& state) {
    for (const std::string& name : names_in(folder)) {
        const std::string path = folder + "/" + name;
        struct stat what;
        if (lstat(path.c_str(), &what) != 0) continue;
        std::string& text = state[prefix + name] = describe(path, what);
        if (times) {
            text += " " + std::to_string(what.st_mtim.tv_sec) + "." +
                    std::to_string(what.st_mtim.tv_nsec);
        }
        if (S_ISDIR(what.st_mode)) add_states(path, prefix + name + "/", times, state);
    }
}

void write_file(const std::string& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    ASSERT_GE(file, 0) << path;
    EXPECT_EQ(write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(file);
}

bool write_line(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written;
}

}  // namespace

State state_of(const std::string& folder, bool times) {
    State state;
    add_states(folder, "", times, state);
    return state;
}

std::vector<std::string> names_in(const std::string& folder) {
    const operations::Descriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::vector<std::string> names;
    if (file) operations::names_in_folder(file.get(), &names);
    std::sort(names.begin(), names.end());
    return names;
}

void make_tree(const std::string& folder, int files) {
    mkdir(folder.c_str(), 0755);
    for (int index = 0; index < files; index++) {
        std::string place = folder;
        if (index % 10 != 0) {
            place += "/folder " + std::to_string(index % 20);
            mkdir(place.c_str(), 0755);
            if (index % 3 == 0) mkdir((place += "/inner").c_str(), 0755);
        }
        const std::string line = "file " + std::to_string(index) + "\n";
        std::string text;
        for (int lines = 0; lines < index % 50; lines++) text += line;
        write_file(place + "/" + std::to_string(index) + ".txt", text);
    }
}

OtherVolume::OtherVolume(const std::string& folder) {
    struct stat here, there;
    char name[] = "/dev/shm/delvio-test.XXXXXX";
    if (stat(folder.c_str(), &here) != 0 || stat("/dev/shm", &there) != 0) return;
    if (here.st_dev != there.st_dev && mkdtemp(name)) path_ = name;
}

OtherVolume::~OtherVolume() {
    if (!path_.empty()) std::filesystem::remove_all(path_);
}

bool enter_own_mounts() {
    const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        if (!write_line("/proc/self/setgroups", "deny") ||
            !write_line("/proc/self/uid_map", user + " " + user + " 1") ||
            !write_line("/proc/self/gid_map", group + " " + group + " 1")) {
            return false;
        }
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mount_small_volume(const std::string& folder, size_t bytes) {
    if (!enter_own_mounts()) return false;
    const std::string options = "size=" + std::to_string(bytes);
    return mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

bool in_child(const std::function<bool()>& action) {
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const bool provided = action();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : provided ? 0 : 77);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_TRUE(WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 77);
    return WEXITSTATUS(status) != 77;
}

void Notes::progressed(const operations::Progress& progress) {
    last = progress;
    if (at_progress) at_progress(progress);
}

operations::Answer Notes::ask(const operations::Conflict& conflict) {
    conflicts.push_back(conflict);
    if (answers.empty()) return {};
    const operations::Answer answer = answers.front();
    if (answers.size() > 1) answers.erase(answers.begin());
    return answer;
}

void Notes::ended(const operations::Report& ended) {
    report = ended;
    has_ended = true;
}

}  // namespace test
