#include "corefoundation/patient_stat.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "corefoundation/local_stat.h"

namespace files {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// Shared by the caller and the thread that waits for the file system.
struct Question {
    std::string path, place;
    Look look;
    Clock::time_point since = Clock::now();
    std::condition_variable answered;
    bool done = false, found = false;
    struct stat status = {};
};
using SharedQuestion = std::shared_ptr<Question>;

const std::ptrdiff_t most_overdue = 4;

struct Questions {
    std::mutex lock;
    std::list<SharedQuestion> open;
};

// Never destroyed: a thread may come back while the process ends.
Questions& questions() {
    static Questions& questions = *new Questions;
    return questions;
}

// The place whose files stop answering together: the mount. Behind a link the mount is unknown, so
// then it is the folder.
std::string place_of(const std::string& path) {
    const std::string mount = foreign_mount_of(path);
    return mount.empty() ? path.substr(0, path.rfind('/')) : mount;
}

// With the lock held.
bool is_in_vain(const std::string& place, double seconds) {
    const Clock::time_point now = Clock::now();
    const auto is_overdue = [&](const SharedQuestion& question) {
        return now - question->since >= Seconds(seconds);
    };
    const auto& open = questions().open;
    return std::count_if(open.begin(), open.end(), is_overdue) >= most_overdue ||
           std::any_of(open.begin(), open.end(), [&](const SharedQuestion& question) {
               return question->place == place && is_overdue(question);
           });
}

void ask(const SharedQuestion& question) {
    struct stat status;
    const bool found = question->look(question->path.c_str(), &status) == 0;
    const std::lock_guard guard(questions().lock);
    questions().open.remove(question);
    if (found) question->status = status;
    question->found = found;
    question->done = true;
    question->answered.notify_one();
}

// With the lock held. False when no thread can be started.
bool start_asking(const SharedQuestion& question) {
    questions().open.push_back(question);
    try {
        std::thread(ask, question).detach();
    } catch (const std::system_error&) {
        questions().open.pop_back();
        return false;
    }
    return true;
}

}  // namespace

Answer ask_patiently(const std::string& path, double seconds, struct stat* status, Look look) {
    switch (local_stat(path, status)) {
        case Local::found:
            return Answer::found;
        case Local::missing:
            return Answer::missing;
        case Local::unknown:
            break;
    }
    const auto question = std::make_shared<Question>();
    question->path = path;
    question->look = look;
    question->place = place_of(path);
    std::unique_lock guard(questions().lock);
    if (is_in_vain(question->place, seconds) || !start_asking(question)) return Answer::silent;
    question->answered.wait_for(guard, Seconds(seconds), [&] { return question->done; });
    if (!question->done) return Answer::silent;
    *status = question->status;
    return question->found ? Answer::found : Answer::missing;
}

std::optional<struct stat> patient_stat(const std::string& path, double seconds, Look look) {
    struct stat status;
    const Answer answer = ask_patiently(path, seconds, &status, look);
    return answer == Answer::found ? std::optional(status) : std::nullopt;
}

size_t open_questions() {
    const std::lock_guard guard(questions().lock);
    return questions().open.size();
}

}  // namespace files
