// Carries out one request, for tests and measurements that need a separate process:
//   operate move|copy|alias|trash|undo|start DESTINATION [--replace] [SOURCE...]
// A single source that ends in "/" stands for everything in it. Prints what was not done.
// The exit status is 1 when something was not done.
#include <fcntl.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "file_steps/folder.h"
#include "file_steps/temporaries.h"
#include "operations/engine.h"
#include "resident/memory_end.h"

namespace {

class Silent : public operations::Observer {
    void ended(const operations::Report&) override {}
};

constexpr struct {
    const char* name;
    operations::Kind kind;
} kinds[] = {
    {"move", operations::Kind::Move},
    {"copy", operations::Kind::Copy},
    {"alias", operations::Kind::Alias},
    {"trash", operations::Kind::Trash},
};

bool read_kind(const char* name, operations::Kind* kind) {
    for (const auto& known : kinds) {
        if (strcmp(known.name, name) == 0) return *kind = known.kind, true;
    }
    return false;
}

std::vector<std::string> all_in(const std::string& folder) {
    const operations::Descriptor open_folder(open(folder.c_str(), O_RDONLY | O_DIRECTORY));
    std::vector<std::string> names;
    operations::names_in_folder(open_folder.get(), &names);
    std::sort(names.begin(), names.end());
    for (std::string& name : names) name = folder + name;
    return names;
}

int report(const operations::Report& report) {
    int status = 0;
    for (const operations::Outcome& outcome : report.outcomes) {
        if (outcome.state == operations::State::Done) continue;
        fprintf(stderr, "%s\n", outcome.reason.c_str());
        status = 1;
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    resident::end_when_memory_ends();
    Silent observer;
    if (argc > 1 && strcmp(argv[1], "undo") == 0) return report(operations::undo_last(observer));
    if (argc > 1 && strcmp(argv[1], "start") == 0) {
        operations::remove_left_temporaries(operations::default_state_folder());
        return 0;
    }
    operations::Request request;
    if (argc < 4 || !read_kind(argv[1], &request.kind)) return 2;
    request.destination = argv[2];
    request.replace = strcmp(argv[3], "--replace") == 0;
    for (int index = request.replace ? 4 : 3; index < argc; index++) {
        request.sources.push_back(argv[index]);
    }
    if (request.sources.size() == 1 && request.sources[0].back() == '/') {
        request.sources = all_in(request.sources[0]);
    }
    return report(operations::perform_request(request, observer));
}
