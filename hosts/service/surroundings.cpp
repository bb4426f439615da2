#include "service/surroundings.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "resident/session.h"
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

// Other threads may still read a variable of the last environment, so its strings stay until the
// next one.
void use_environment(const std::vector<std::string>& environment) {
    static auto &last = *new std::unique_ptr<Variables>, &before = *new std::unique_ptr<Variables>;
    auto variables = std::make_unique<Variables>(environment);
    environ = variables->pointers.data();
    before = std::move(last);
    last = std::move(variables);
}

// What a caller does not take is lost, and no error of its is left for the next one.
void put_behind(FILE* stream, int file) {
    fflush(stream);
    clearerr(stream);
    if (file >= 0 && file != fileno(stream)) dup3(file, fileno(stream), O_CLOEXEC);
}

}  // namespace

void print_to(int output, int error) {
    put_behind(stdout, output);
    put_behind(stderr, error);
}

Surroundings::Surroundings(const std::vector<std::string>& environment, mode_t file_mode_mask,
                           const Files& files)
    : own_environment_(resident::own_environment()),
      own_mask_(umask(file_mode_mask)),
      has_folder_(fchdir(files.folder) == 0) {
    use_environment(environment);
    print_to(files.output, files.error);
}

Surroundings::~Surroundings() {
    print_to(host_log_file(), host_log_file());
    // A folder that nobody uses can be unmounted.
    if (chdir("/") != 0) log_line("the folder / cannot be entered");
    umask(own_mask_);
    // The C library may have freed the old list, if a variable was set in the meantime.
    use_environment(own_environment_);
}
