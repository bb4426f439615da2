#include "plugin/failing_memory.h"

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <stddef.h>

#include <atomic>

namespace {

std::atomic<int> calls_left;  // 0 while none fails
std::atomic<bool> failed, without_threads;

}  // namespace

test::FailingMemory::FailingMemory(int call) {
    failed = false;
    calls_left = call;
}
test::FailingMemory::~FailingMemory() { calls_left = 0; }
bool test::FailingMemory::has_failed() { return failed; }

test::NoThreads::NoThreads() { without_threads = true; }
test::NoThreads::~NoThreads() { without_threads = false; }

extern "C" {

void* __real_calloc(size_t, size_t);
void* __wrap_calloc(size_t count, size_t size) {
    if (calls_left > 0 && --calls_left == 0) {
        failed = true;
        return nullptr;
    }
    return __real_calloc(count, size);
}

// In place of the C library's, also for the toolkit.
__attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                          const pthread_attr_t* attributes,
                                                          void* (*start)(void*), void* argument) {
    static auto* const next =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return without_threads ? EAGAIN : next(thread, attributes, start, argument);
}
}
