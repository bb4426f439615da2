// What a program takes from whoever starts it: environment, folder, mask of file modes, output.
// Main thread.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// While this object lives, the process has a caller's surroundings. The destructor gives it back
// its own. `stdout` and `stderr` stay the same streams: only the files behind them change, so any
// thread may print.
class Surroundings {
  public:
    // The descriptors stay the caller's.
    struct Files {
        int folder, output, error;
    };
    Surroundings(const std::vector<std::string>& environment, mode_t file_mode_mask,
                 const Files& files);
    ~Surroundings();
    // Whether the process is in the caller's folder. If not, relative names would mean other files.
    bool has_folder() const { return has_folder_; }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

  private:
    const std::vector<std::string> own_environment_;
    const mode_t own_mask_;
    const bool has_folder_;
};

// Puts a file behind both streams.
void print_to(int output, int error);
