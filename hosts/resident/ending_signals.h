// The signals that end a program, read from a descriptor. Main thread.
#pragma once

#include <signal.h>

#include "file_steps/descriptor.h"

namespace resident {

// While this object lives, these signals wait to be read instead of ending the process. One that
// was not read ends it afterwards.
class EndingSignals {
  public:
    EndingSignals();
    ~EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    int descriptor() const { return descriptor_.get(); }
    // The signal that arrived first; waits for one.
    int take() const;

  private:
    sigset_t before_;
    operations::Descriptor descriptor_;
};

}  // namespace resident
