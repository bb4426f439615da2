// Whether a folder answers, asked on a thread of its own. Any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

namespace files {

class FolderQuestion {
  public:
    // Asks for everything that a listing of the folder asks for, so that the kernel knows it when
    // the folder is read. Null for a folder of a local disk, which always answers. A folder that
    // is being asked already is not asked twice; when many folders are silent, no further one is
    // asked, and the question stays without an answer.
    static std::shared_ptr<FolderQuestion> ask(const std::string& path);

    explicit FolderQuestion(std::string path) : path_(std::move(path)) {}

    // Whether the folder has answered, be it with an error. Waits for at most `seconds`.
    bool is_answered(double seconds = 0);

    // The same, but waits only until so long after the folder was asked first.
    bool is_answered_in_time(double seconds);

    // Whether the folder has answered just now, so that it need not be asked again.
    static bool has_answered_lately(const std::string& path);

  private:
    void look();

    const std::string path_;
    const std::chrono::steady_clock::time_point asked_ = std::chrono::steady_clock::now();
    std::mutex lock_;
    std::condition_variable changed_;
    bool is_answered_ = false;
};

}  // namespace files
