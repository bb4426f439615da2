// A program of the test's own, made the user's default program for some types of file. It writes
// down what it is given to open. Lives in the isolated run's XDG folders; make it before GIO looks.
#pragma once

#include <string>
#include <vector>

namespace test {

class RecordingProgram {
  public:
    // For these content types, for example "text/plain". `field` is how it takes its arguments:
    // %f a path, %u an address, %F and %U several of them.
    explicit RecordingProgram(const std::vector<std::string>& types,
                              const std::string& field = "%f");

    // The arguments of every start so far, in order; empty while it has not been started.
    std::vector<std::string> opened() const;
    // The same, but waits for the first start, ten seconds at most.
    std::vector<std::string> wait() const;
    // Forgets what was opened.
    void forget();

  private:
    std::string record_;
};

}  // namespace test
