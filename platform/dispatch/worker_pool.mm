#include "dispatch/work.h"

#import <Foundation/Foundation.h>
#include <pthread.h>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace {

struct Piece {
    void* context;
    dispatch_function_t work;
};

// More workers than processors: work waits for disks and other programs rather than for the
// processor, and a piece that never ends must not hold up the others.
constexpr int most_workers = 16;

class WorkerPool {
  public:
    void add(const Piece& piece) {
        const std::lock_guard<std::mutex> lock(mutex_);
        pieces_.push_back(piece);
        const bool are_enough =
            idle_ >= static_cast<int>(pieces_.size()) || workers_ == most_workers;
        // Without a new worker, one of the others takes the piece.
        if (are_enough || !start_worker()) changed_.notify_one();
    }

  private:
    bool start_worker() {
        pthread_t thread;
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
        const bool started = pthread_create(&thread, &attributes, run_worker, this) == 0;
        pthread_attr_destroy(&attributes);
        workers_ += started;
        return started;
    }

    static void* run_worker(void* pool) {
        GSRegisterCurrentThread();
        static_cast<WorkerPool*>(pool)->work();
        return nullptr;
    }

    // Workers live as long as the process.
    [[noreturn]] void work() {
        for (;;) {
            const Piece piece = next();
            @autoreleasepool {
                piece.work(piece.context);
            }
        }
    }

    Piece next() {
        std::unique_lock<std::mutex> lock(mutex_);
        idle_++;
        while (pieces_.empty()) changed_.wait(lock);
        idle_--;
        const Piece piece = pieces_.front();
        pieces_.pop_front();
        return piece;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Piece> pieces_;
    int workers_ = 0, idle_ = 0;
};

}  // namespace

void run_on_worker(void* context, dispatch_function_t work) {
    // Never destroyed: workers may still run when the process ends.
    static WorkerPool& pool = *new WorkerPool;
    pool.add({context, work});
}
