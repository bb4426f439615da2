// A screen reader in a process of its own, on the test's session bus.
#pragma once

#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace test {

class ScreenReader {
  public:
    enum Mode {
        active,  // assistive technology is in use
        idle,    // its bus runs, and nobody uses it
        watch,   // it does not even have its bus
    };
    // Returns when the reader listens.
    explicit ScreenReader(Mode mode);
    ~ScreenReader();
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    // All that was heard so far; screen_reader.py says in which words.
    std::vector<std::string> heard() const;
    // Waits until a line with this beginning is heard, after those that were waited for before. The
    // test fails when it is not heard within two minutes.
    bool hears(const std::string& line);
    // Carries out a command, and returns what was heard from the last line that was waited for to
    // its end.
    std::vector<std::string> command(const std::string& words);

  private:
    TempFolder folder_;
    const std::string record_;
    size_t place_ = 0;
    int process_ = -1, commands_ = -1;
};

}  // namespace test
