// The sleep of a tracking loop: it waits for every descriptor and timer of one mode of the run
// loop, and for nothing else. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>

@class EventBell;

class event_wait_t {
  public:
    // Whether there is work to do at once, apart from anything that the run loop waits for.
    using question_t = std::function<bool()>;

    explicit event_wait_t(NSString* mode);
    ~event_wait_t();
    event_wait_t(const event_wait_t&) = delete;
    event_wait_t& operator=(const event_wait_t&) = delete;

    // Serves the run loop until something has happened: an event is in the queue, a timer has
    // fired, a descriptor has been served, or the time `due` has come (see deadline_t; 0 is never).
    // `has_work` is asked when everything has been served, before the process goes to sleep.
    void sleep(double due, const question_t& has_work);

    // Called by the bell each time the run loop is about to poll.
    void about_to_poll();

  private:
    NSString* mode_;   // retained
    EventBell* bell_;  // retained
    event_wait_t* outer_ = nullptr;
    const question_t* has_work_ = nullptr;
    double began_ = 0;
    int polls_ = 0;
};
