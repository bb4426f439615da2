#include "service/surroundings.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "service/host_log.h"

namespace {

struct Variables {
    std::vector<std::string> strings;
    std::vector<char*> pointers;

    explicit Variables(const std::vector<std::string>& environment) : strings(environment) {
        for (std::string& text : strings) pointers.push_back(text.data());
        pointers.push_back(nullptr);
    }
};

// Other threads may still read a variable of the last call, so its strings stay until the next.
void use_environment(const std::vector<std::string>& environment) {
    static std::unique_ptr<Variables>& last = *new std::unique_ptr<Variables>;
    auto variables = std::make_unique<Variables>(environment);
    environ = variables->pointers.data();
    last = std::move(variables);
}

void put_behind(FILE* stream, int file) {
    fflush(stream);
    if (file >= 0 && file != fileno(stream)) dup3(file, fileno(stream), O_CLOEXEC);
}

}  // namespace

void print_to(int output, int error) {
    put_behind(stdout, output);
    put_behind(stderr, error);
}

Surroundings::Surroundings(const std::vector<std::string>& environment, mode_t file_mode_mask,
                           const Files& files)
    : own_environment_(environ), own_mask_(umask(file_mode_mask)) {
    use_environment(environment);
    print_to(files.output, files.error);
    // Where the folder cannot be entered, the caller could not have found its files either.
    if (fchdir(files.folder) != 0) log_line("the caller's folder cannot be entered");
}

Surroundings::~Surroundings() {
    print_to(host_log_file(), host_log_file());
    // A folder that nobody uses can be unmounted.
    if (chdir("/") != 0) log_line("the folder / cannot be entered");
    umask(own_mask_);
    environ = own_environment_;
}
