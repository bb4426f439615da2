// A program that uses GNUstep, but not Delvio, and does nothing until it is killed.
#pragma once

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "support/temp_folder.h"
#include "support/waiting.h"

namespace test {

// Where a program that has loaded GNUstep has it.
inline std::string gnustep_library() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const size_t path = line.find('/');
        if (path != line.npos && line.find("libgnustep-base") != line.npos)
            return line.substr(path);
    }
    return {};
}

class GnustepProgram {
  public:
    GnustepProgram() : process_(fork()) {
        if (process_ == 0) {
            setenv("LD_PRELOAD", gnustep_library().c_str(), 1);
            execlp("sleep", "sleep", "infinity", nullptr);
            _exit(127);
        }
    }
    ~GnustepProgram() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    GnustepProgram(const GnustepProgram&) = delete;
    GnustepProgram& operator=(const GnustepProgram&) = delete;

    // False if it does not run.
    bool wait_until_it_runs() const {
        const std::string folder = "/proc/" + std::to_string(process_);
        return wait_for([&] {
            return read_file(folder + "/comm") == "sleep\n" &&
                   read_file(folder + "/maps").find("libgnustep-base") != std::string::npos;
        });
    }

  private:
    pid_t process_;
};

}  // namespace test
