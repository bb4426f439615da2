// The record of an operation from which it can be undone: its steps, and their form as text.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "file_steps/trash.h"

namespace operations {

// The state of a copy just before it got its name.
struct CopyState {
    unsigned long long inode = 0;
    long long size = 0;
    timespec modified = {}, changed = {};
    bool linked = false;  // a file of it has a second name in the set, which changes it later
};

// Moved: source → target. Copied: the same, with the state of the copy. Aliased: target is a link
// to source. Trashed: source is in the trash.
struct Step {
    enum Kind { Moved, Copied, Aliased, Trashed } kind = Moved;
    std::string source, target;
    unsigned long long inode = 0;
    CopyState copy;
    bool is_confirmed = false;  // of a copy: it has its name
    // For a move by way of a copy: the inode of the original, which was then removed, perhaps in
    // part.
    unsigned long long original = 0;
    operations::Trashed trashed;

    bool is_undone = false;
    unsigned long long restored = 0;  // inode of the copy that was being put back, if any
};

struct Recorded {
    std::vector<Step> steps;
    std::string operation;  // its name; empty in a record that has none
    std::string problem;    // why nothing of it can be undone; else empty
    size_t length = 0;      // in bytes, of the complete entries
};

// Reads the entries below. The last one may be cut off, when its process was killed.
Recorded read_undo_record(const std::string& text);

// Whether the last entry, at the end of the text `end`, says that a file goes to the trash.
bool ends_with_trashing(const std::string& end, Trashed* trashed);

// The bytes of one entry.
// The operation's name is a number that no other operation has.
std::string begun_entry(const std::string& operation);
std::string moving_entry(const std::string& source, const std::string& target, ino_t inode);
std::string trashing_entry(const std::string& path, const Trashed& trashed, ino_t inode);
std::string not_done_entry();
std::string copying_entry(const std::string& source, const std::string& target,
                          const CopyState& state);
std::string copied_entry();
std::string emptying_entry(const std::string& source, const std::string& target, ino_t original);
std::string aliasing_entry(const std::string& source, const std::string& target);
std::string elsewhere_entry(const std::string& line);
// Entries of an undo: a copy that puts a file back is about to get its name; a step is undone.
std::string restoring_entry(size_t step, ino_t inode);
std::string undone_entry(size_t step);

}  // namespace operations
