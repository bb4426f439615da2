// Shared by the tests of file operations: trees, their states, other volumes.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "operations/engine.h"

namespace test {

// Every entry below a folder by its relative path: kind, permissions, and the bytes or the link's
// target; with `times` also the time of its last change.
using State = std::map<std::string, std::string>;
State state_of(const std::string& folder, bool times = false);

// The contents of the folder, sorted, including the engine's temporaries.
std::vector<std::string> names_in(const std::string& folder);

// Makes the folder and fills it with this many small files of different bytes: some in the folder
// itself, most in its subfolders.
void make_tree(const std::string& folder, int files);

// A new folder on another file system than `folder`, removed with the object.
class OtherVolume {
  public:
    explicit OtherVolume(const std::string& folder);
    ~OtherVolume();
    OtherVolume(const OtherVolume&) = delete;
    OtherVolume& operator=(const OtherVolume&) = delete;
    // Empty when this machine has no such file system.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// From now on only this process sees what it mounts. False when this machine allows no mounts. For
// a process with one thread.
bool enter_own_mounts();

// Mounts an empty file system of this many bytes on the folder, for this process alone. False when
// this machine does not allow it. Runs in a child.
bool mount_small_volume(const std::string& folder, size_t bytes);

// Runs the function in a child; failed expectations there count for this process. A child that
// returns false could not provide what the test needs.
bool in_child(const std::function<bool()>& action);

// Records the calls, and answers as the test sets it to.
class Notes : public operations::Observer {
  public:
    void progressed(const operations::Progress& progress) override;
    operations::Answer ask(const operations::Conflict& conflict) override;
    bool is_cancelled() override { return cancelled; }
    void ended(const operations::Report& report) override;

    std::vector<operations::Answer> answers;  // used from the front; the last one is repeated
    std::vector<operations::Conflict> conflicts;
    std::function<void(const operations::Progress&)> at_progress;
    operations::Progress last;
    bool cancelled = false, has_ended = false;
    operations::Report report;
};

}  // namespace test
