// Copying and moving by the engine, compared with cp and mv, each started as a process. cp is
// followed by sync, because the engine writes everything to the disk before it gives a copy its
// name.
#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/harness.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

constexpr int items = 10000;
constexpr size_t megabyte = 1 << 20;
constexpr int long_file_megabytes = 1024;

std::string folder;

void run(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t process = -1;
    int status = 0;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(process, &status, 0) != process || status != 0) {
        fprintf(stderr, "%s did not do its work\n", arguments[0]);
        exit(1);
    }
}

void make_small_files(const std::string& path, bool in_folders) {
    for (int index = 0; index < items; index++) {
        const std::string place =
            in_folders ? path + "/folder " + std::to_string(index % 100) : path;
        fs::create_directories(place);
        std::ofstream(place + "/file " + std::to_string(index))
            << std::string(static_cast<size_t>(100 + index % 4000), 'x');
    }
}

void make_long_file(const std::string& path) {
    std::ofstream file(path);
    std::string piece(megabyte, 0);
    for (int index = 0; index < long_file_megabytes; index++) {
        for (size_t at = 0; at < piece.size(); at += 64) piece[at] = static_cast<char>(rand());
        file << piece;
    }
}

// Leaves nothing of one variant for the disk to write during the other.
void start_anew(const std::string& path) {
    fs::remove_all(path);
    fs::create_directory(path);
    run({"sync", "-f", path});
}

void copy_race(const std::string& what, const std::string& source, int rounds) {
    const std::string to = folder + "/to";
    start_anew(to);
    bench::Race race(what, 0);
    race.add(
        "cp -a and sync",
        [&] {
            run({"cp", "-a", source, to});
            run({"sync", "-f", to});
        },
        [&] { start_anew(to); });
    race.add(
        "engine",
        [&] {
            run({OPERATE_PROGRAM, "copy", to, source});
        },
        [&] { start_anew(to); });
    race.run(rounds);
    race.print();
    bench::check(what, race.seconds("engine") / race.seconds("cp -a and sync"), 1.2);
}

void move_race() {
    const std::string from = folder + "/here", to = folder + "/there";
    fs::create_directory(from);
    fs::create_directory(to);
    make_small_files(from, false);
    std::vector<std::string> names, forth, mv_forth, back, mv_back;
    for (const auto& entry : fs::directory_iterator(from)) names.push_back(entry.path().filename());
    const auto words = [&](std::vector<std::string> start, const std::string& place) {
        for (const std::string& name : names) start.push_back(place + "/" + name);
        return start;
    };
    bench::Race race("moving within a volume", items);
    race.add(
        "mv",
        [&] {
            run(words({"mv", "-n", "-t", to}, from));
        },
        [&] {
            run(words({"mv", "-n", "-t", from}, to));
        });
    race.add(
        "engine",
        [&] {
            run(words({OPERATE_PROGRAM, "move", to}, from));
        },
        [&] {
            run(words({"mv", "-n", "-t", from}, to));
        });
    race.run(9);
    race.print();
    bench::check("moving 10,000 items within a volume", race.seconds("engine") / race.seconds("mv"),
                 1.5);
}

}  // namespace

int main() {
    std::string name = fs::temp_directory_path().string() + "/delvio-bench.XXXXXX";
    if (!mkdtemp(name.data())) return 1;
    folder = name;
    move_race();
    make_small_files(folder + "/tree", true);
    copy_race("copying 10,000 small files", folder + "/tree", 3);
    make_long_file(folder + "/long");
    copy_race("copying 1 GiB", folder + "/long", 3);
    fs::remove_all(folder);
    return bench::status();
}
