// What the last operation did, step by step, on disk, so that it can be undone later and by another
// process. A step that changes something stands there before it is done. Worker thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/descriptor.h"
#include "operations/undo_record.h"

namespace operations {

// The file.
std::string UndoJournalPath(const std::string& state_folder);

// Its steps replace those of the operation before it, from the first one on. What cannot be written
// is not undoable; the operation goes on.
class UndoJournal {
  public:
    // With an empty folder nothing is written.
    explicit UndoJournal(const std::string& state_folder);

    void moving(const std::string& source, const std::string& target, ino_t inode);
    void trashing(const std::string& path, const Trashed& trashed, ino_t inode);
    void aliasing(const std::string& source, const std::string& target);
    // A copy, which `what` describes, is about to get its name.
    void copying(const std::string& source, const std::string& target, const struct stat& what,
                 bool linked);
    // It has it.
    void copied();
    // The step before did not happen.
    void not_done();
    // What was copied is about to be removed at its source: it was a move.
    void emptying(const std::string& source, const std::string& target, ino_t original);
    // Somebody else does it, and the line says why it cannot be undone here.
    void elsewhere(const std::string& line);

  private:
    void record(const std::string& entry);
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

    const std::vector<Step>& steps() const { return recorded_.steps; }
    const std::string& problem() const { return recorded_.problem; }
    // Written down so that an undo that is interrupted can be repeated. False with errno.
    bool restoring(size_t step, ino_t inode);
    bool undone(size_t step);
    // It is undone.
    void forget();

  private:
    bool add(const std::string& entry);

    const std::string path_;
    Descriptor file_;
    Recorded recorded_;
};

}  // namespace operations
