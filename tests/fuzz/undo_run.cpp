// Undoing by a damaged journal: whatever it says, no file's content is lost.
//
// The input is a journal in which the byte 1 stands for a folder of three files, and the bytes 2 to
// 4 stand for their inodes. The first file has a second name, and there is a link to it. A journal
// that names anything outside that folder is not tried.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "input.h"
#include "operations/engine.h"
#include "operations/undo_journal.h"
#include "require.h"
#include "scratch.h"

using fuzz::require;
namespace fs = std::filesystem;

namespace {

struct Quiet : operations::Observer {
    void ended(const operations::Report&) override {}
};

const std::string& world() {
    static const std::string& path = *new std::string(fuzz::scratch() + "/world");
    return path;
}

const char* const names[] = {"a", "b", "files/c"};

void make_world() {
    fs::remove_all(world());
    fs::create_directories(world() + "/d");
    fs::create_directories(world() + "/files");
    fs::create_directories(world() + "/state");
    for (const char* name : names)
        fuzz::write_file(world() + "/" + name, fs::path(name).filename());
    fs::create_hard_link(world() + "/a", world() + "/second");
    fs::create_symlink(world() + "/a", world() + "/link");
}

std::string journal_of(const std::string& text) {
    std::string journal;
    for (const char byte : text) {
        if (byte == 1) {
            journal += world();
        } else if (byte >= 2 && byte < 5) {
            struct stat what;
            stat((world() + "/" + names[byte - 2]).c_str(), &what);
            journal += std::to_string(what.st_ino);
        } else {
            journal += byte;
        }
    }
    return journal;
}

bool is_inside(const std::string& path) {
    return path.starts_with(world() + "/") && path.find("..") == path.npos;
}

bool is_harmless(const std::string& journal) {
    for (const operations::Step& step : operations::read_undo_record(journal).steps) {
        const bool trashed = step.kind == operations::Step::Trashed;
        if (!is_inside(step.source) || !is_inside(trashed ? step.trashed.file : step.target) ||
            (trashed && !is_inside(step.trashed.info))) {
            return false;
        }
    }
    return true;
}

// How often each content is below the folder.
void count_contents(const std::string& folder, std::map<std::string, int>* found) {
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        if (!entry.is_regular_file(error) || entry.file_size(error) != 1) continue;
        std::ifstream file(entry.path());
        ++(*found)[std::string(1, static_cast<char>(file.get()))];
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string trash = fuzz::scratch() + "/data/Trash";
    static const int known = setenv("XDG_DATA_HOME", (fuzz::scratch() + "/data").c_str(), 1);
    (void)known;
    fuzz::Input input(data, size);
    const std::string text = input.rest();
    make_world();
    const std::string journal = journal_of(text);
    if (!is_harmless(journal)) return -1;
    fuzz::write_file(operations::undo_journal_path(world() + "/state"), journal);
    Quiet observer;
    const auto report = operations::undo_last(observer, world() + "/state");
    for (const auto& outcome : report.outcomes) {
        require(outcome.state == operations::State::Done || !outcome.reason.empty(), "a reason");
    }
    std::map<std::string, int> found;
    count_contents(world(), &found);
    count_contents(trash, &found);
    for (const char* name : {"a", "b", "c"}) require(found[name] > 0, "no file's content is lost");
    fs::remove_all(trash);
    return 0;
}
