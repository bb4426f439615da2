// A queue of requests, which a thread of its own carries out one after the other.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "file_steps/request.h"

namespace operations {

class RequestQueue {
  public:
    struct Job {
        Request request;
        std::shared_ptr<Observer> observer;
    };
    // `carry_out` is called on the queue's thread, which starts with the first request.
    explicit RequestQueue(std::function<void(Job)> carry_out);
    // Waits for the request that is being carried out; drops the waiting ones.
    ~RequestQueue();
    RequestQueue(const RequestQueue&) = delete;
    RequestQueue& operator=(const RequestQueue&) = delete;

    // Any thread. Where the system has no thread for the queue, the request ends at once, refused,
    // on the caller's.
    void add(Job job);

  private:
    void run();
    bool next(Job& job);
    bool take(Job& job);

    const std::function<void(Job)> carry_out_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> waiting_;
    bool ends_ = false;
    std::thread thread_;
};

}  // namespace operations
