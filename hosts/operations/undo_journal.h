// What the last operation did, step by step, on disk, so that it can be undone later and by another
// process. A step that changes something stands there before it is done. Worker thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "operations/descriptor.h"
#include "operations/trash.h"

namespace operations {

// Moved: source → target. Copied: the same, with the time since when it must be unchanged.
// Aliased: target is a link to source. Trashed: source is in the trash.
struct Step {
    enum Kind { Moved, Copied, Aliased, Trashed } kind = Moved;
    std::string source, target;
    unsigned long long inode = 0;
    timespec unchanged_since = {};
    bool linked = false;  // a file of it has another name in the set, which changed it later
    operations::Trashed trashed;
};

// Its steps replace those of the operation before it, from the first one on. What cannot be written
// is not undoable; the operation goes on.
class UndoJournal {
  public:
    // With an empty folder nothing is written.
    explicit UndoJournal(const std::string& state_folder);

    void moving(const std::string& source, const std::string& target, ino_t inode);
    void trashing(const std::string& path, const Trashed& trashed, ino_t inode);
    // The step before did not happen.
    void not_done();
    void copied(const std::string& source, const std::string& target, const struct stat& what,
                bool linked);
    // What was copied is about to be removed at its source: it was a move.
    void emptying(const std::string& source, const std::string& target);
    void aliased(const std::string& source, const std::string& target);
    // The last step, at the time of the destination's file system.
    void ended(const timespec& time);

  private:
    void record(const std::vector<std::string>& fields);
    bool begin();
    void give_up();

    const std::string state_folder_;
    Descriptor file_;
    bool gave_up_;
};

// The steps of the last operation, for undoing. While it lives no other process undoes them.
class LastOperation {
  public:
    // problem() says why there is nothing to undo, or is empty.
    explicit LastOperation(const std::string& state_folder);

    const std::vector<Step>& steps() const { return steps_; }
    const std::string& problem() const { return problem_; }
    // It is undone.
    void forget();

  private:
    void read_steps(const std::string& text);
    bool read_step(const std::vector<std::string>& fields);
    void set_moved(const std::string& source, const std::string& target);
    void set_ended(const timespec& time);

    const std::string path_;
    Descriptor file_;
    std::string problem_;
    std::vector<Step> steps_;
    std::unordered_map<std::string, size_t> copies_;  // by target
};

}  // namespace operations
