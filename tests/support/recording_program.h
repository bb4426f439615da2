// A program of the test's own, made the user's default program for some types of file. It writes
// down what it is given to open. Lives in the isolated run's XDG folders; make it before GIO looks.
// Its desktop entry is record.desktop.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace test {

class RecordingProgram {
  public:
    // For these content types, for example "text/plain". `field` is how it takes its arguments:
    // %f a path, %u an address, %F and %U several of them.
    explicit RecordingProgram(const std::vector<std::string>& types,
                              const std::string& field = "%f");

    // The program's own file, for a start that is not by its type.
    std::string path() const { return script_; }

    // The arguments of every start so far, in order; empty while it has not been started.
    std::vector<std::string> opened() const;
    // The same, but waits for the first start, a minute at most.
    std::vector<std::string> wait() const;
    // Of the last start: the folder it was in and the descriptors it had open.
    std::string working_folder() const;
    std::set<int> descriptors() const;
    // And its environment, "NAME=VALUE" each.
    std::set<std::string> environment() const;
    // Forgets what was opened.
    void forget();

  private:
    std::string script_, record_, folder_record_, descriptors_record_, environment_record_;
};

}  // namespace test
