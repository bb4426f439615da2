// Whether the running program is still the installed one, on the display that it has started with.
// Main thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <utility>
#include <vector>

class Freshness {
  public:
    // Notes every program file that is loaded now, and the display's size and resources.
    Freshness();
    // What has changed since, as a clause for the log; empty for nothing.
    std::string change() const;

  private:
    std::vector<std::pair<std::string, struct stat>> files_;
    std::string display_;
};
