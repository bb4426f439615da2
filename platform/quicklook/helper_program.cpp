#include "quicklook/helper_program.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "quicklook/background.h"
#include "quicklook/helper_reply.h"

namespace thumbnails {

namespace {

using Clock = std::chrono::steady_clock;

const int pipe_size = 1024 * 1024;

class SpawnSettings {
  public:
    explicit SpawnSettings(int reply) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_adddup2(&actions_, reply, reply_descriptor);
        for (int standard = 0; standard < 3; standard++) {
            posix_spawn_file_actions_addopen(&actions_, standard, "/dev/null", O_RDWR, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&actions_, reply_descriptor + 1);

        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

// Starts the program; 0 when that fails. `reply` is the end of the pipe that the program writes to.
pid_t start(const std::string& program, const std::vector<std::string>& arguments, int reply) {
    std::vector<char*> words = {const_cast<char*>(program.c_str())};
    for (const std::string& word : arguments) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    char path[] = "PATH=/usr/local/bin:/usr/bin:/bin", language[] = "LANG=C.UTF-8";
    const char* folder = getenv("TMPDIR");
    std::string temporary = "TMPDIR=" + std::string(folder && *folder ? folder : "/tmp");
    char* environment[] = {path, language, temporary.data(), nullptr};
    const SpawnSettings settings(reply);
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), settings.actions(),
                                  settings.attributes(), words.data(), environment);
    return error == 0 ? process : 0;
}

void end_group(pid_t process) {
    // The child is not yet reaped, so its number is still its own.
    siginfo_t state = {};
    const bool is_ours =
        waitid(P_PID, static_cast<id_t>(process), &state, WEXITED | WNOHANG | WNOWAIT) == 0;
    if (!is_ours) return;
    kill(-process, SIGKILL);
    reap_in_background(process);
}

}  // namespace

Answer run_helper(const std::string& program, const std::vector<std::string>& arguments, Box box,
                  double seconds) {
    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                             std::chrono::duration<double>(seconds));
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    // Room for a whole picture saves turns of writing and reading. If the kernel refuses it, no
    // harm is done.
    fcntl(ends[0], F_SETPIPE_SZ, pipe_size);
    const pid_t process = start(program, arguments, ends[1]);
    close(ends[1]);
    Answer answer;
    if (process > 0) {
        answer = read_answer(ends[0], box, deadline);
        end_group(process);
    }
    close(ends[0]);
    return answer;
}

std::string helper_folder() {
    Dl_info library;
    if (!dladdr(reinterpret_cast<const void*>(&helper_folder), &library)) return {};
    std::error_code error;
    const auto folder = std::filesystem::canonical(library.dli_fname, error).parent_path();
    for (const char* place : {"../libexec", DELVIO_HELPERS_FROM_LIBRARY}) {
        const auto candidate = std::filesystem::canonical(folder / place, error);
        if (!error && access((candidate / "delvio-thumbnailer").c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return {};
}

}  // namespace thumbnails
