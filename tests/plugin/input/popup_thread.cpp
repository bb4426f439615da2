#include "plugin/input/popup_thread.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

constexpr useconds_t shortest_delay = 100000;  // the thread's pauses while it polls are shorter

std::atomic<pid_t> thread;
std::atomic<int> rest_count, waking_count;
std::atomic<bool> in_delay;
std::atomic<useconds_t> delay, pause_asked;
sem_t delay_passed;

std::set<pid_t> threads() {
    std::set<pid_t> ids;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        ids.insert(std::stoi(task.path().filename()));
    }
    return ids;
}

bool is_the_thread() { return thread != 0 && gettid() == thread; }

}  // namespace

namespace test {

void PopupThread::find(void (*start)()) {
    sem_init(&delay_passed, 0, 0);
    const std::set<pid_t> before = threads();
    start();
    for (const pid_t id : threads()) {
        if (!before.count(id)) thread = id;
    }
}

bool PopupThread::is_in_delay() { return in_delay; }
useconds_t PopupThread::asked_delay() { return delay; }

void PopupThread::let_delay_pass() {
    in_delay = false;
    sem_post(&delay_passed);
}

useconds_t PopupThread::asked_pause() { return pause_asked; }

int PopupThread::rests() { return rest_count; }
int PopupThread::wakings() { return waking_count; }

bool PopupThread::sleeps_without_limit() {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
    long call = -1;
    std::string address, operation, value, limit;
    file >> call >> address >> operation >> value >> limit;
    return call == SYS_futex && limit == "0x0";
}

}  // namespace test

// Replaces the C library's functions.
extern "C" int usleep(useconds_t microseconds) {
    if (is_the_thread() && microseconds >= shortest_delay) {
        delay = microseconds;
        in_delay = true;
        while (sem_wait(&delay_passed) != 0) {
        }
        return 0;
    }
    if (is_the_thread()) pause_asked = microseconds;
    const timespec time = {microseconds / 1000000, microseconds % 1000000 * 1000L};
    return nanosleep(&time, nullptr);
}

extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    static auto* next =
        reinterpret_cast<decltype(&pthread_cond_wait)>(dlsym(RTLD_NEXT, "pthread_cond_wait"));
    if (!is_the_thread()) return next(condition, mutex);
    rest_count++;
    const int result = next(condition, mutex);
    waking_count++;
    return result;
}
