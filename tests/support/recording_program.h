// A program of the test's own, made the user's default program for some types of file. It records
// what it is asked to open. It lives in the isolated run's XDG folders; create it before GIO reads
// them. Its desktop entry is record.desktop.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace test {

class RecordingProgram {
  public:
    // Registers for these content types, for example "text/plain". `field` is how the program takes
    // its arguments: %f a path, %u an address, %F and %U several of them.
    explicit RecordingProgram(const std::vector<std::string>& types,
                              const std::string& field = "%f");

    // The program's own file, for starting it other than by type.
    std::string path() const { return script_; }

    // The arguments of every start so far, in order; empty before the first start.
    std::vector<std::string> opened() const;
    // The same, but waits for the first start, at most a minute.
    std::vector<std::string> wait() const;
    // For the last start: the folder it was in and the descriptors it had open.
    std::string working_folder() const;
    std::set<int> descriptors() const;
    // Also for the last start: the environment, each entry "NAME=VALUE".
    std::set<std::string> environment() const;
    // Forgets what was opened.
    void forget();

  private:
    std::string script_, record_, folder_record_, descriptors_record_, environment_record_;
};

}  // namespace test
