// GNUstep's pasteboard server of this test, which run_isolated gives a folder of its own.
#pragma once

#include <sys/types.h>

namespace test {

class PasteboardServer {
  public:
    // Starts the server where none runs.
    PasteboardServer();
    // Ends a server that stands still.
    ~PasteboardServer();
    PasteboardServer(const PasteboardServer&) = delete;
    PasteboardServer& operator=(const PasteboardServer&) = delete;

    // 0 when it could not be started.
    pid_t process() const { return process_; }
    // It answers nothing any more. It cannot go on: the signal for that ends it.
    void stand_still();

  private:
    pid_t process_ = 0;
    bool still_ = false;
};

}  // namespace test
