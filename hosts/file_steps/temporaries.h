// Everything that the engine makes for a while has a name of its own, and stands in a journal as
// long as it may be there: what a killed process leaves behind is found and removed at the next
// start. Any thread.
#pragma once

#include <string>

#include "file_steps/descriptor.h"

namespace operations {

// The right to make things in a folder whose names begin with prefix().
class Temporaries {
  public:
    // Journals the open folder. Then problem() is empty, or why it cannot be done.
    Temporaries(const std::string& state_folder, int folder);
    // Takes the entry back. Everything must have been removed by then.
    ~Temporaries();
    Temporaries(const Temporaries&) = delete;
    Temporaries& operator=(const Temporaries&) = delete;

    const std::string& prefix() const { return prefix_; }
    const std::string& problem() const { return problem_; }
    // Something could not be removed: leaves it to the next start.
    void leave() { leaves_ = true; }

  private:
    bool open_journal(const std::string& journals, const std::string& name,
                      const std::string& text);

    std::string prefix_, journal_, problem_;
    Descriptor lock_;
    bool leaves_ = false;
};

// Removes what ended processes left behind, as far as it can be reached. Never what belongs to a
// process that still lives, or has a name that is in no journal. Waits for disks, but for no lock.
void RemoveLeftTemporaries(const std::string& state_folder);

// The same in processes of their own, which nobody waits for; returns at once. A disk that does not
// answer holds up one of them, and no later one asks it while that one waits.
void BeginToRemoveLeftTemporaries(const std::string& state_folder);

}  // namespace operations
