// Every temporary file of the engine has a name with a known prefix, and a journal lists its folder
// while it may exist. The files that a killed process leaves behind are therefore found and removed
// at the next start. Any thread.
#pragma once

#include <string>

#include "file_steps/descriptor.h"

namespace operations {

// The right to make temporary files, whose names begin with prefix(), in a folder.
class Temporaries {
  public:
    // Writes the journal of the open folder. problem() then says why that failed, or is empty.
    Temporaries(const std::string& state_folder, int folder);
    // Removes the journal. The temporary files must have been removed before.
    ~Temporaries();
    Temporaries(const Temporaries&) = delete;
    Temporaries& operator=(const Temporaries&) = delete;

    const std::string& prefix() const { return prefix_; }
    const std::string& problem() const { return problem_; }
    // Keeps the journal, because a file could not be removed: the next start removes it.
    void leave() { leaves_ = true; }

  private:
    bool open_journal(const std::string& journals, const std::string& name,
                      const std::string& text);

    std::string prefix_, journal_, problem_;
    Descriptor lock_;
    bool leaves_ = false;
};

// Removes the files that ended processes left behind, where they can be reached. Never removes
// files of a running process, or files that no journal names. Waits for disks, but for no lock.
void remove_left_temporaries(const std::string& state_folder);

// Does the same in processes of their own, which nobody waits for; returns at once. A disk that
// does not answer holds up one of these processes; later ones skip its journal while that one
// waits.
void begin_to_remove_left_temporaries(const std::string& state_folder);

}  // namespace operations
