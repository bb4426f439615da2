// What is written down of an operation so that it can be undone: the steps, and how they read.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/trash.h"

namespace operations {

// What a copy was like just before it got its name.
struct CopyState {
    unsigned long long inode = 0;
    long long size = 0;
    timespec modified = {}, changed = {};
    bool linked = false;  // a file of it has another name in the set, which changes it later
};

// Moved: source → target. Copied: the same, with what the copy was like. Aliased: target is a link
// to source. Trashed: source is in the trash.
struct Step {
    enum Kind { Moved, Copied, Aliased, Trashed } kind = Moved;
    std::string source, target;
    unsigned long long inode = 0;
    CopyState copy;
    bool is_confirmed = false;  // of a copy: it has got its name
    // Of a move by way of a copy: the original that was then taken away, perhaps in part.
    unsigned long long original = 0;
    operations::Trashed trashed;

    bool is_undone = false;
    unsigned long long restored = 0;  // what was being put back by way of a copy, if anything
};

struct Recorded {
    std::vector<Step> steps;
    std::string problem;  // why nothing of it can be undone; else empty
    size_t length = 0;    // in bytes, of what is whole
};

// Reads what the lines below have written. The end may have been cut off with its process.
Recorded ReadRecord(const std::string& text);

// Whether what has been written last, of which `end` is the end, is that something goes to the
// trash.
bool EndsWithTrashing(const std::string& end, Trashed* trashed);

// The bytes of one entry.
std::string BegunEntry();
std::string MovingEntry(const std::string& source, const std::string& target, ino_t inode);
std::string TrashingEntry(const std::string& path, const Trashed& trashed, ino_t inode);
std::string NotDoneEntry();
std::string CopyingEntry(const std::string& source, const std::string& target,
                         const CopyState& state);
std::string CopiedEntry();
std::string EmptyingEntry(const std::string& source, const std::string& target, ino_t original);
std::string AliasingEntry(const std::string& source, const std::string& target);
std::string ElsewhereEntry(const std::string& line);
// Of an undo: what is put back by way of a copy is about to get its name; a step is undone.
std::string RestoringEntry(size_t step, ino_t inode);
std::string UndoneEntry(size_t step);

}  // namespace operations
