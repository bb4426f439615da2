// Lets calls of the plug-in for memory fail, in programs that are linked with --wrap=calloc.
#pragma once

namespace test {

// While this object lives, one call of calloc fails: 1 is the next one.
class FailingMemory {
  public:
    explicit FailingMemory(int call);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
    // Whether there were so many calls.
    static bool has_failed();
};

// While this object lives, no thread can be started.
class NoThreads {
  public:
    NoThreads();
    ~NoThreads();
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
};

}  // namespace test
