// A journal on disk of what the last operation did, step by step, so that it can be undone later
// and by another process. Each step is written before it is done. For the worker thread.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/descriptor.h"
#include "operations/undo_record.h"

namespace operations {

// The journal's path.
std::string undo_journal_path(const std::string& state_folder);

// The first step replaces the journal of the operation before. A journal that cannot be written
// makes the operation not undoable; the operation goes on.
class UndoJournal {
  public:
    // With an empty state folder nothing is written.
    explicit UndoJournal(const std::string& state_folder);
    ~UndoJournal() { unlock(file_); }

    void moving(const std::string& source, const std::string& target, ino_t inode);
    void trashing(const std::string& path, const Trashed& trashed, ino_t inode);
    void aliasing(const std::string& source, const std::string& target);
    // A copy, which `what` describes, is about to get its name.
    void copying(const std::string& source, const std::string& target, const struct stat& what,
                 bool linked);
    // The copy has its name.
    void copied();
    // The last noted step did not happen.
    void not_done();
    // The source of a copy is about to be removed: the step was a move.
    void emptying(const std::string& source, const std::string& target, ino_t original);
    // Another program carries the request out; `line` says why it cannot be undone here.
    void elsewhere(const std::string& line);

    // Names the operation for its undo; empty if nothing of it is recorded.
    const std::string& operation() const { return operation_; }

  private:
    void record(const std::string& entry);
    bool begin();
    void give_up();

    const std::string state_folder_;
    std::string operation_;
    Descriptor file_;
    bool gave_up_;
};

// The steps of the last operation, for undoing. While this object lives, no other process undoes
// them.
class LastOperation {
  public:
    // problem() says why there is nothing to undo, or is empty.
    explicit LastOperation(const std::string& state_folder);
    ~LastOperation() { unlock(file_); }

    const std::vector<Step>& steps() const { return recorded_.steps; }
    const std::string& operation() const { return recorded_.operation; }
    const std::string& problem() const { return recorded_.problem; }
    // Both write an entry, so that an interrupted undo can be repeated. False with errno.
    bool restoring(size_t step, ino_t inode);
    bool undone(size_t step);
    // Removes the journal, because the operation is undone.
    void forget();

  private:
    bool add(const std::string& entry);

    const std::string path_;
    Descriptor file_;
    Recorded recorded_;
};

}  // namespace operations
