#include "bench/test_folder.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <set>
#include <stdexcept>

namespace bench {

namespace {

using Random = std::mt19937;

unsigned below(Random& random, unsigned limit) { return static_cast<unsigned>(random() % limit); }

std::string make_name(Random& random) {
    static const char* const words[] = {
        "report",
        "Photo",
        "invoice",
        "IMG",
        "notes",
        "Draft",
        "backup",
        "chapter",
        "meeting",
        "summary",
        "Music",
        "project",
        "data",
        "scan",
        "letter",
        "Budget",
        "caf\xc3\xa9",
        "f\xc3\xbcr",
        "\xd0\xbe\xd1\x82\xd1\x87\xd1\x91\xd1\x82",
        "\xe5\x86\x99\xe7\x9c\x9f",
    };
    static const char* const joints[] = {" ", "_", "-", "", "."};
    static const char* const extensions[] = {"", ".txt", ".pdf", ".jpg", ".tar.gz", ".c"};
    const auto pick = [&](const auto& table) { return table[below(random, std::size(table))]; };
    std::string name = below(random, 20) == 0 ? "." : "";
    name += pick(words);
    name += pick(joints);
    if (below(random, 2)) name += std::string(pick(words)) + pick(joints);
    return name + std::to_string(below(random, 10000)) + pick(extensions);
}

void make_entry(Random& random, const std::string& folder, const std::string& name) {
    const std::string path = folder + "/" + name;
    const unsigned kind = below(random, 100);
    bool made;
    if (kind < 15) {
        made = mkdir(path.c_str(), 0755) == 0;
    } else if (kind < 22) {
        static const char* const targets[] = {"/usr", "/etc/passwd", "missing"};
        made = symlink(targets[kind % 3], path.c_str()) == 0;
    } else {
        const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        made = file >= 0;
        if (made) close(file);
    }
    if (!made) throw std::runtime_error("cannot make " + path);
}

}  // namespace

TestFolder::TestFolder(int entries) {
    std::string pattern = (std::filesystem::temp_directory_path() / "delvio-bench.XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
    holder_ = pattern;
    path_ = holder_ + "/entries";
    if (mkdir(path_.c_str(), 0755) != 0) throw std::runtime_error("cannot make " + path_);
    Random random(static_cast<unsigned>(entries));
    std::set<std::string> names;
    while (names.size() < static_cast<size_t>(entries)) {
        const std::string name = make_name(random);
        if (!names.insert(name).second) continue;
        make_entry(random, path_, name);
        names_.push_back(name);
    }
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(holder_, ignored);
}

}  // namespace bench
