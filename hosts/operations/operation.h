// One request at work: each source is found, conflicts are settled, files are moved or copied. For
// the worker thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "file_steps/descriptor.h"
#include "file_steps/temporaries.h"
#include "file_steps/tree_copy.h"
#include "file_steps/tree_count.h"
#include "file_steps/work.h"
#include "operations/undo_journal.h"

namespace operations {

class Operation {
  public:
    // With `record` the undo steps of this operation replace those of the last operation.
    Operation(const Request& request, Observer& observer, const std::string& state_folder,
              bool record);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    // Moves the one source to this name and no other. If the move needs a copy, `before` is called
    // with the inode of the copy before it gets the name; false cancels that.
    void set_exact_name(const std::string& name, std::function<bool(ino_t)> before) {
        exact_name_ = name;
        before_exact_name_ = std::move(before);
    }

    Report run();

  private:
    using Identity = std::pair<dev_t, ino_t>;

    struct Item {
        size_t index = 0;
        std::string path, name;              // as in the request; the wanted name
        std::shared_ptr<Descriptor> folder;  // the folder of the source
        struct stat what = {};
        std::optional<Choice> choice;  // set once its name was found taken
        unsigned attempt = 0;          // number of the attempt at a name that keeps both
        unsigned tries = 0;            // attempts at all names
        std::optional<Trashed> replaced;
        std::string temporary;
        std::string target_name;
        bool linked = false;
    };

    bool open_destination();
    void carry(size_t index);
    bool find(size_t index, Item& item);
    bool is_refused(Item& item);
    void move(Item item);
    void copy(Item item);
    void make_alias(Item& item);
    void trash(Item& item);

    bool begin_copies(size_t index);
    bool may_be_removed(const Item& item);
    bool prepare(Item& item);
    void flush();
    void check_pending();
    void publish_pending();
    bool publish(Item& item);
    bool give_name(Item& item);
    bool announce(const Item& item);
    void empty_sources();
    void discard(Item& item);
    void end_count();

    Choice decide(const Item& item, const std::string& name);
    bool is_settled_by_choice(const Item& item);
    bool make_room(Item& item);
    bool may_try_again(Item& item);
    bool trash_target(Item& item);
    bool put_in_trash(const Thing& thing, const std::string& path, Trashed* trashed);
    void give_back(Item& item);
    std::optional<bool> holds_source(const Item& item, const struct stat& target);

    std::string target_path(const std::string& name) const;
    Outcome& outcome(const Item& item) { return report_.outcomes[item.index]; }
    void settle_done(const Item& item, const std::string& target);
    void settle_skipped(const Item& item, const std::string& reason);
    void settle_failed(const Item& item);

    const Request& request_;
    const std::string state_folder_;
    Work work_;
    UndoJournal journal_;
    Report report_;
    std::string exact_name_;
    std::function<bool(ino_t)> before_exact_name_;
    Descriptor destination_;
    struct stat destination_what_ = {};
    std::set<Identity> above_;  // the destination and the folders above it
    std::string folder_path_;   // of the folder opened last
    std::shared_ptr<Descriptor> folder_;
    std::optional<Choice> choice_for_all_;

    std::unique_ptr<TreeCount> count_;
    std::unique_ptr<Temporaries> temporaries_;
    std::unique_ptr<TreeCopy> copies_;
    unsigned temporaries_made_ = 0;
    std::vector<Item> pending_;  // copied, but not yet under their names
    std::unordered_set<std::string> pending_names_;
    uint64_t bytes_before_ = 0;
    size_t folders_opened_ = 0;  // since the last flush; pending items keep them open
};

}  // namespace operations
