#include "operations/engine.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "operations/operation.h"

namespace operations {

namespace {

// Requests in a row, carried out by one thread that is there while there are some.
class Engine : public Carrier {
  public:
    explicit Engine(const std::string& state_folder) : state_folder_(state_folder) {}
    ~Engine() override;
    void carry_out(Request request, std::shared_ptr<Observer> observer) override;

  private:
    struct Job {
        Request request;
        std::shared_ptr<Observer> observer;
    };
    void run();
    bool next(Job& job);

    const std::string state_folder_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> waiting_;
    bool ends_ = false;
    std::thread thread_;
};

Engine::~Engine() {
    {
        const std::lock_guard guard(mutex_);
        ends_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void Engine::carry_out(Request request, std::shared_ptr<Observer> observer) {
    const std::lock_guard guard(mutex_);
    waiting_.push_back({std::move(request), std::move(observer)});
    if (!thread_.joinable()) thread_ = std::thread(&Engine::run, this);
    changed_.notify_all();
}

bool Engine::next(Job& job) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    if (ends_) return false;
    job = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
}

void Engine::run() {
    for (Job job; next(job); job = {}) {
        job.observer->ended(Perform(job.request, *job.observer, state_folder_));
    }
}

}  // namespace

Report Perform(const Request& request, Observer& observer, const std::string& state_folder) {
    return Operation(request, observer, state_folder, true).run();
}

std::unique_ptr<Carrier> MakeEngine(const std::string& state_folder) {
    return std::make_unique<Engine>(state_folder);
}

}  // namespace operations
