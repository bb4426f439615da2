// Runs the real delvio command and gathers what it says.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace test {

struct Outcome {
    int status = -1;  // exit status; 128 plus the number of a signal; -1 when it had to be killed
    std::string out;
    std::string err;
};

// What is different from this process's environment; an empty value removes the variable.
using Changes = std::vector<std::pair<std::string, std::string>>;

// Returns when the command has ended and both of its streams have been closed by everyone.
Outcome run_delvio(const std::vector<std::string>& arguments, const Changes& environment = {});

// A command that runs meanwhile; killed when the object goes.
class RunningCommand {
  public:
    explicit RunningCommand(const std::vector<std::string>& arguments,
                            const Changes& environment = {});
    ~RunningCommand();
    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;

    int process() const { return process_; }
    void send_signal(int number) const;
    Outcome finish();

  private:
    int process_;
    int out_, err_;
};

}  // namespace test
