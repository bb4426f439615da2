// The command line of bubblewrap. One thread.
#pragma once

#include <string>
#include <vector>

namespace thumbnails {

struct Cage {
    bool is_for_program = false;  // needs /proc, /etc and a folder to write to
    std::string helper_folder;    // of our own programs
    std::string program;          // a thumbnailer, wherever it is installed
    std::string input_name;       // with this name, the file of file_descriptor is in /input
};

// The words to put before a command that is to run in the cage. The cage has the system's folders
// read-only, its own processes, no network, and none of the user's files.
std::vector<std::string> bubblewrap_words(const Cage& cage);

inline const char caged_input[] = "/input";
inline const char caged_output[] = "/output";

}  // namespace thumbnails
