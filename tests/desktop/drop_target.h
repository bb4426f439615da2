// Another program, made with GTK, that takes drops: a window of 200 x 150 pixels. It ends with the
// test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

class DropTarget {
  public:
    // Puts the window at a point of the screen. The window takes offers of `type` and writes into
    // `record`, a new file.
    DropTarget(const std::string& record, int x, int y, const std::string& type = "text/uri-list");
    // Writes the record to standard error when the test has failed.
    ~DropTarget();
    DropTarget(const DropTarget&) = delete;
    DropTarget& operator=(const DropTarget&) = delete;

    // Whether this has happened: "ready", "over", "left", "dropped", "got ...".
    bool has(const std::string& line) const;
    // The addresses of each drop, separated by blanks.
    std::vector<std::string> drops() const;

  private:
    std::vector<std::string> lines() const;
    std::string record_;
    pid_t process_ = 0;
};

}  // namespace test
