#include "operations/engine.h"

#include <host/text.h>

#include <utility>

#include "file_steps/temporaries.h"
#include "file_steps/visible_text.h"
#include "file_steps/work.h"
#include "operations/left_trash_info.h"
#include "operations/operation.h"
#include "operations/request_queue.h"
#include "operations/undo_journal.h"

namespace operations {

namespace {

class Engine : public Carrier {
  public:
    explicit Engine(std::string state_folder)
        : queue_([folder = std::move(state_folder)](const RequestQueue::Job& job) {
              job.observer->ended(perform_request(job.request, *job.observer, folder));
          }) {}
    void carry_out(Request request, std::shared_ptr<Observer> observer) override {
        queue_.add({std::move(request), std::move(observer)});
    }

  private:
    RequestQueue queue_;
};

// What was done, with places for the files and for who did it.
const char* elsewhere_text(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return to_translate(
                "the last operation (moving %s) was handed to %s, and can only be undone there");
        case Kind::Copy:
            return to_translate(
                "the last operation (copying %s) was handed to %s, and can only be undone there");
        case Kind::Alias:
            return to_translate(
                "the last operation (making an alias of %s) was handed to %s, and can only be "
                "undone there");
        case Kind::Trash:
            break;
    }
    return to_translate(
        "the last operation (trashing %s) was handed to %s, and can only be undone there");
}

}  // namespace

Report perform_request(const Request& request, Observer& observer,
                       const std::string& state_folder) {
    begin_to_remove_left_temporaries(state_folder);
    begin_to_remove_left_trash_info(state_folder);
    return Operation(request, observer, state_folder, true).run();
}

void note_done_elsewhere(const Request& request, const std::string& who,
                         const std::string& state_folder) {
    if (request.sources.empty()) return;
    const size_t others = request.sources.size() - 1;
    std::string files = quoted_name(request.sources.front());
    if (others > 0) {
        files = translated_count("%s and %s other", "%s and %s others", others,
                                 {files, std::to_string(others)});
    }
    UndoJournal(state_folder).elsewhere(translated(elsewhere_text(request.kind), {files, who}));
}

std::unique_ptr<Carrier> make_engine(const std::string& state_folder) {
    return std::make_unique<Engine>(state_folder);
}

}  // namespace operations
