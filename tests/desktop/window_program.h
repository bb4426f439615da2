// Another program with windows; it ends with the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

class WindowProgram {
  public:
    // Starts the small client WINDOW_CLIENT with these words (window_client.cpp).
    explicit WindowProgram(const std::vector<std::string>& words);
    ~WindowProgram();
    WindowProgram(const WindowProgram&) = delete;
    WindowProgram& operator=(const WindowProgram&) = delete;

  private:
    pid_t process_ = 0;
    int input_ = -1;  // the program runs until this is closed
};

}  // namespace test
