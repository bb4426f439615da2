// A program that shows a window. A measurement starts it and ends it again.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

struct _XDisplay;

namespace bench {

// What a process has used so far, in all its threads together; the processor time includes threads
// that have ended.
struct Usage {
    double processor = 0;  // seconds
    long wake_ups = 0;
};

class StartedProgram {
  public:
    explicit StartedProgram(const std::vector<std::string>& command);
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    // Waits until a pixel of the screen differs from `before`. Throws when the program ends or
    // nothing appears.
    void wait_for_pixel(_XDisplay* display, int x, int y, unsigned long before);
    // Waits until the program has been idle for so long.
    void wait_for_rest(double seconds = 1);
    void end();
    Usage usage() const;

  private:
    pid_t process_ = 0;
};

unsigned long pixel(_XDisplay* display, int x, int y);

}  // namespace bench
