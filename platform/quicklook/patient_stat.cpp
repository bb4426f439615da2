#include "quicklook/patient_stat.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "quicklook/local_stat.h"

namespace thumbnails {

namespace {

// Shared by who asks and by the thread that waits for the file system.
struct Question {
    std::string path;
    std::condition_variable answered;
    bool done = false, found = false, is_stuck = false;
    struct stat status = {};
};

const size_t most_stuck = 32;

struct Questions {
    std::mutex lock;
    std::multiset<std::string> stuck_folders;
};

// Never destroyed: a thread may come back while the process ends.
Questions& questions() {
    static Questions& questions = *new Questions;
    return questions;
}

std::string folder_of(const std::string& path) { return path.substr(0, path.rfind('/')); }

void ask(const std::shared_ptr<Question>& question) {
    struct stat status;
    const bool found = stat(question->path.c_str(), &status) == 0;
    const std::lock_guard guard(questions().lock);
    auto& stuck = questions().stuck_folders;
    if (question->is_stuck) stuck.erase(stuck.find(folder_of(question->path)));
    if (found) question->status = status;
    question->found = found;
    question->done = true;
    question->answered.notify_one();
}

bool start_asking(const std::shared_ptr<Question>& question) {
    try {
        std::thread(ask, question).detach();
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

}  // namespace

std::optional<struct stat> patient_stat(const std::string& path, double seconds) {
    struct stat status;
    switch (local_stat(path, &status)) {
        case Local::found:
            return status;
        case Local::missing:
            return {};
        case Local::unknown:
            break;
    }
    std::unique_lock guard(questions().lock);
    auto& stuck = questions().stuck_folders;
    if (stuck.size() >= most_stuck || stuck.count(folder_of(path))) return {};
    const auto question = std::make_shared<Question>();
    question->path = path;
    if (!start_asking(question)) return {};
    question->answered.wait_for(guard, std::chrono::duration<double>(seconds),
                                [&] { return question->done; });
    if (question->done) return question->found ? std::optional(question->status) : std::nullopt;
    question->is_stuck = true;
    stuck.insert(folder_of(path));
    return {};
}

}  // namespace thumbnails
