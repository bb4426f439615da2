// The sleep of a tracking loop: it waits for every descriptor and timer of one mode of the run
// loop, and for nothing else. Main thread.
#pragma once

#include <Foundation/Foundation.h>

#include <functional>

@class EventBell;

class EventWait {
  public:
    // Whether there is work to do at once, apart from anything that the run loop waits for.
    using SharedQuestion = std::function<bool()>;

    explicit EventWait(NSString* mode);
    ~EventWait();
    EventWait(const EventWait&) = delete;
    EventWait& operator=(const EventWait&) = delete;

    // Serves the run loop until something has happened: an event is in the queue, a timer has
    // fired, a descriptor has been served, or the time `due` has come (see Deadline; 0 is never).
    // `has_work` is asked when everything has been served, before the process goes to sleep.
    void sleep(double due, const SharedQuestion& has_work);

    // Called by the bell each time the run loop is about to poll.
    void about_to_poll();

  private:
    NSString* mode_;   // retained
    EventBell* bell_;  // retained
    EventWait* outer_ = nullptr;
    const SharedQuestion* has_work_ = nullptr;
    double began_ = 0;
    int polls_ = 0;
};
