// While an object of this class lives, this thread obeys file permissions even when root runs the
// tests.
#pragma once

#include <stdint.h>

namespace test {

class Unprivileged {
  public:
    Unprivileged();
    ~Unprivileged();
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

  private:
    uint32_t effective_[2];
};

}  // namespace test
