// Copies trees entry by entry, and removes the sources of moves. For the worker thread.
#pragma once

#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

#include "file_steps/descriptor.h"
#include "file_steps/work.h"

namespace operations {

// Where an entry is: its open folder and its name; the path is for messages.
struct Place {
    int folder;
    std::string name;
    std::string path;
};

class TreeCopy {
  public:
    // `destination` is the open folder of every target; temporary files in it get names that begin
    // with `prefix`. With `for_move`, TreeCopy remembers what it copied, and refuses a source that
    // it could not remove afterwards.
    TreeCopy(Work& work, int destination, const std::string& prefix, bool for_move);
    TreeCopy(const TreeCopy&) = delete;
    TreeCopy& operator=(const TreeCopy&) = delete;

    // The target must not exist. After a failure a part of it may exist.
    bool copy(const Place& source, const Place& target);

    // Writes everything copied since the last call to the disk. `path` is for messages.
    bool sync(const std::string& path);

    // For a source that was copied for a move: whether it is still as it was copied, and whether
    // the copy, read again, has the same bytes.
    bool check(const Place& source, const Place& target);
    // Removes a source that was copied for a move, but nothing that was added or changed since.
    bool remove(const Place& source);
    // Removes the temporary files. False when some are left.
    bool finish();
    // Forgets the sources copied so far.
    void forget() { stamps_.clear(); }

    // Whether a file got a second name (a hard link) since the last call.
    bool take_linked() { return std::exchange(linked_, false); }

  private:
    using Identity = std::pair<dev_t, ino_t>;
    struct Stamp {
        off_t size;
        timespec modified, changed;
        bool has_several_names;
    };

    bool copy_by_kind(const Place& source, const Place& target, const struct stat& what);
    bool copy_file(const Place& source, const Place& target);
    bool copy_once(const Place& source, const Place& target, bool* changed);
    bool copy_bytes(int from, int to, const struct stat& what, const std::string& path,
                    bool* changed);
    bool copy_folder(const Place& source, const Place& target);
    bool copy_content(int from, int to, const Place& source, const Place& target);
    bool copy_link(const Place& source, const Place& target, const struct stat& what);
    bool copy_node(const Place& source, const Place& target, const struct stat& what);
    bool link_again(const Place& target, const struct stat& what);
    void keep_link(const Place& target, const struct stat& what);
    bool may_enter(int folder, const struct stat& what, const Place& source);
    bool may_remove_from(int folder, const Place& source);
    void forget_inherited(int made, const Place& target);
    void remember(const struct stat& what);
    bool is_as_remembered(const struct stat& what, bool removing) const;
    bool check_file(const Place& source, const Place& target);
    bool check_folder(const Place& source, const Place& target);
    bool remove_folder(const Place& source);
    void wrote(int file = -1);

    Work& work_;
    const int destination_;
    const std::string prefix_;
    const bool for_move_;
    const bool inherits_;  // the destination passes an access list on
    bool linked_ = false;
    int depth_ = 0;
    Identity destination_identity_ = {};
    size_t written_ = 0;
    std::vector<Descriptor> unsynced_;
    std::map<Identity, std::string> link_names_;
    std::vector<std::string> made_;  // temporary names
    std::map<Identity, Stamp> stamps_;
};

}  // namespace operations
