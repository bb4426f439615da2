// Runs the real delvio command and collects its output.
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

// The differences from this process's environment; an empty value removes the variable.
using Changes = std::vector<std::pair<std::string, std::string>>;

// Returns when the command has ended and all writers have closed both of its streams.
Outcome run_delvio(const std::vector<std::string>& arguments, const Changes& environment = {});

// What a shell's command prints on standard output.
std::string output_of(const std::string& command);

// A command that runs in the background; it is killed when the object is destroyed.
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
