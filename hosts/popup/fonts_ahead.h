#pragma once
#include <pthread.h>

// Reads the system's list of fonts on a second thread while the toolkit gets ready, which takes
// about as long. The thread reads the environment, so nobody may change that until the object is
// gone. Without a thread the toolkit reads the list itself, later.
class FontsAhead {
  public:
    FontsAhead();
    // Waits for the list.
    ~FontsAhead();
    FontsAhead(const FontsAhead&) = delete;
    FontsAhead& operator=(const FontsAhead&) = delete;

  private:
    pthread_t thread_ = 0;
    const bool has_thread_;
};
