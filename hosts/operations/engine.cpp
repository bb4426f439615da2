#include "operations/engine.h"

#include <utility>

#include "operations/operation.h"
#include "operations/request_queue.h"

namespace operations {

namespace {

class Engine : public Carrier {
  public:
    explicit Engine(std::string state_folder)
        : queue_([folder = std::move(state_folder)](RequestQueue::Job job) {
              job.observer->ended(Perform(job.request, *job.observer, folder));
          }) {}
    void carry_out(Request request, std::shared_ptr<Observer> observer) override {
        queue_.add({std::move(request), std::move(observer)});
    }

  private:
    RequestQueue queue_;
};

}  // namespace

Report Perform(const Request& request, Observer& observer, const std::string& state_folder) {
    return Operation(request, observer, state_folder, true).run();
}

std::unique_ptr<Carrier> MakeEngine(const std::string& state_folder) {
    return std::make_unique<Engine>(state_folder);
}

}  // namespace operations
