// What the tests of file operations share: trees, their states, other volumes.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "operations/engine.h"

namespace test {

// Every entry below a folder by its relative path: kind, permissions, and the bytes or the link's
// text; with `times` also when it was changed.
using State = std::map<std::string, std::string>;
State state_of(const std::string& folder, bool times = false);

// What the folder holds, sorted; temporaries of the engine and all.
std::vector<std::string> names_in(const std::string& folder);

// A tree of so many small files of different bytes: some stand in the folder itself, most in
// folders of it. The folder is made.
void make_tree(const std::string& folder, int files);

// A new folder on another file system than `folder`, removed with the object.
class OtherVolume {
  public:
    explicit OtherVolume(const std::string& folder);
    ~OtherVolume();
    OtherVolume(const OtherVolume&) = delete;
    OtherVolume& operator=(const OtherVolume&) = delete;
    // Empty when this machine has none.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// What this process mounts from now on it has for itself. False when this machine allows none. For
// a process with one thread.
bool enter_own_mounts();

// Mounts an empty file system of so many bytes on the folder, for this process alone. False when
// this machine allows none. Sent in a child.
bool mount_small_volume(const std::string& folder, size_t bytes);

// Runs it in a child, whose failed expectations are this process's. A child that returns false
// could not provide what the test needs.
bool in_child(const std::function<bool()>& action);

// Notes what it is told; answers as it is set to.
class Notes : public operations::Observer {
  public:
    void progressed(const operations::Progress& progress) override;
    operations::Answer ask(const operations::Conflict& conflict) override;
    bool is_cancelled() override { return cancelled; }
    void ended(const operations::Report& report) override;

    std::vector<operations::Answer> answers;  // taken from the front; then the last one again
    std::vector<operations::Conflict> conflicts;
    std::function<void(const operations::Progress&)> at_progress;
    operations::Progress last;
    bool cancelled = false, has_ended = false;
    operations::Report report;
};

}  // namespace test
