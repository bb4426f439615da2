#include "operations/last_done.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "file_steps/visible_text.h"
#include "operations/undo_journal.h"

namespace operations {

namespace {

// A menu does not read more of a journal than this before it opens.
constexpr size_t most_read = 256 * 1024;

Kind kind_of(Step::Kind kind) {
    switch (kind) {
        case Step::Moved:
            return Kind::Move;
        case Step::Copied:
            return Kind::Copy;
        case Step::Aliased:
            return Kind::Alias;
        case Step::Trashed:
            break;
    }
    return Kind::Trash;
}

std::string read_start(int file) {
    std::string text(most_read, '\0');
    size_t done = 0;
    for (ssize_t size; done < text.size(); done += static_cast<size_t>(size)) {
        size = read(file, text.data() + done, text.size() - done);
        if (size <= 0) break;
    }
    text.resize(done);
    return text;
}

// The step that gives the operation its name: replaced files go to the trash before the file that
// replaces them is moved.
const Step* naming_step(const std::vector<Step>& steps) {
    const Step* first = nullptr;
    for (const Step& step : steps) {
        if (step.is_undone) continue;
        if (step.kind != Step::Trashed) return &step;
        if (!first) first = &step;
    }
    return first;
}

}  // namespace

std::optional<LastDone> done_by(const std::vector<Step>& steps) {
    const Step* const named = naming_step(steps);
    if (!named) return {};
    LastDone done = {kind_of(named->kind), std::string(last_component(named->source)), 0};
    for (const Step& step : steps) done.count += step.kind == named->kind && !step.is_undone;
    return done;
}

std::optional<LastDone> last_done(const std::string& state_folder) {
    const std::string path = undo_journal_path(state_folder);
    Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!file || flock(file.get(), LOCK_SH | LOCK_NB) != 0) return {};
    const std::string text = read_start(file.get());
    unlock(file);
    const Recorded recorded = read_undo_record(text);
    if (!recorded.problem.empty()) return {};
    std::optional<LastDone> done = done_by(recorded.steps);
    if (done && text.size() == most_read) done->count = 0;
    return done;
}

}  // namespace operations
