#include "corefoundation/folder_question.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <list>
#include <system_error>
#include <thread>

#include "corefoundation/local_stat.h"

namespace files {

namespace {

const size_t most_open = 8;
const std::chrono::milliseconds just_now{150};
// Entries that are looked at one by one. The kernel forgets what it knows of more.
const size_t most_entries = 2000;

struct OpenQuestions {
    std::mutex lock;
    std::list<std::pair<std::string, std::weak_ptr<FolderQuestion>>> open;
    std::string answered;  // the folder that has answered last
    std::chrono::steady_clock::time_point answered_at;
};

// Never destroyed: a thread may come back while the process ends.
OpenQuestions& questions() {
    static OpenQuestions& questions = *new OpenQuestions;
    return questions;
}

void look_at(const std::string& path) {
    const int place = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
    if (place < 0) return;
    DIR* folder = fdopendir(place);
    if (!folder) {
        close(place);
        return;
    }
    size_t looked = 0;
    while (const dirent* entry = readdir(folder)) {
        struct stat status;
        if (looked++ < most_entries) fstatat(place, entry->d_name, &status, AT_SYMLINK_NOFOLLOW);
    }
    closedir(folder);
}

}  // namespace

std::shared_ptr<FolderQuestion> FolderQuestion::ask(const std::string& path) {
    struct stat status;
    if (local_stat(path, &status) != Local::unknown) return nullptr;
    OpenQuestions& all = questions();
    const std::lock_guard guard(all.lock);
    for (const auto& [asked, question] : all.open) {
        if (asked != path) continue;
        if (std::shared_ptr<FolderQuestion> same = question.lock()) return same;
    }
    auto question = std::make_shared<FolderQuestion>(path);
    if (all.open.size() >= most_open) return question;
    try {
        std::thread([question] { question->look(); }).detach();
        all.open.emplace_back(path, question);
    } catch (const std::system_error&) {
        // Without a thread the question stays open.
    }
    return question;
}

bool FolderQuestion::is_answered(double seconds) {
    std::unique_lock guard(lock_);
    changed_.wait_for(guard, std::chrono::duration<double>(seconds),
                      [this] { return is_answered_; });
    return is_answered_;
}

bool FolderQuestion::is_answered_in_time(double seconds) {
    const std::chrono::duration<double> since = std::chrono::steady_clock::now() - asked_;
    return is_answered(std::max(seconds - since.count(), 0.0));
}

bool FolderQuestion::has_answered_lately(const std::string& path) {
    OpenQuestions& all = questions();
    const std::lock_guard guard(all.lock);
    return all.answered == path && std::chrono::steady_clock::now() - all.answered_at < just_now;
}

void FolderQuestion::look() {
    look_at(path_);
    {
        OpenQuestions& all = questions();
        const std::lock_guard guard(all.lock);
        all.answered = path_;
        all.answered_at = std::chrono::steady_clock::now();
        all.open.remove_if([this](const auto& open) { return open.second.lock().get() == this; });
    }
    const std::lock_guard guard(lock_);
    is_answered_ = true;
    changed_.notify_all();
}

}  // namespace files
