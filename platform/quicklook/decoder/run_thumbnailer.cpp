// Runs a thumbnailer program and becomes the image decoder for what it made:
//   delvio-run-thumbnailer WIDTH HEIGHT INPUT OUTPUT-FOLDER SECONDS PROGRAM [ARGUMENT...]
// Without an output folder, which a cage has, it makes one and removes it. Without arguments it
// only says that it has started.
#include <host/glib_owners.h>
#include <errno.h>
#include <fcntl.h>
#include <glib.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "quicklook/decoder/number_word.h"
#include "quicklook/decoder/open_input.h"
#include "quicklook/decoder/reply_writer.h"
#include "quicklook/decoder/restrictions.h"

namespace {

using namespace thumbnails;
using Words = std::vector<std::string>;

enum { width = 1, height, input, output_folder, seconds, program };

struct Job {
    std::string input, folder, output;
    int side;
    bool owns_folder;
};

std::string uri_of(const std::string& path) {
    return files::taken_text(g_filename_to_uri(path.c_str(), nullptr, nullptr));
}

std::string expanded(const char* word, const Job& job) {
    std::string text;
    for (const char* at = word; *at; at++) {
        if (*at != '%' || !at[1]) {
            text += *at;
            continue;
        }
        switch (*++at) {
            case 'i':
                text += job.input;
                break;
            case 'u':
                text += uri_of(job.input);
                break;
            case 'o':
                text += job.output;
                break;
            case 's':
                text += std::to_string(job.side);
                break;
            case '%':
                text += '%';
                break;
            default:
                break;
        }
    }
    return text;
}

[[noreturn]] void become_program(const Words& words, const Job& job) {
    fcntl(reply_descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(file_descriptor, F_SETFD, FD_CLOEXEC);
    setenv("HOME", job.folder.c_str(), 1);
    setenv("TMPDIR", job.folder.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (restrict_program({{job.input, words[0]}, job.folder, !job.owns_folder})) {
        execv(arguments[0], arguments.data());
    }
    _exit(127);
}

enum class Run { done, failed, too_slow, not_started };

// These signals are blocked, so that a wait with a time limit can receive them: the program has
// ended, our parent has ended, or our time is up.
sigset_t awaited_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGCHLD, SIGTERM, SIGALRM}) sigaddset(&signals, signal);
    return signals;
}

time_t now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec;
}

pid_t start(const Words& words, const Job& job) {
    const sigset_t signals = awaited_signals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGPIPE, SIG_DFL);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        sigprocmask(SIG_UNBLOCK, &signals, nullptr);
        become_program(words, job);
    }
    return child;
}

Run run(const Words& words, const Job& job, time_t limit) {
    const pid_t child = start(words, job);
    if (child < 0) return Run::not_started;
    const sigset_t signals = awaited_signals();
    const time_t end = now() + limit;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        const timespec second = {1, 0};
        const int heard = sigtimedwait(&signals, nullptr, &second);
        if (heard == SIGTERM || heard == SIGALRM || now() >= end) return Run::too_slow;
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127) return Run::not_started;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Run::done : Run::failed;
}

std::string temporary_folder() {
    const char* parent = getenv("TMPDIR");
    std::string folder = std::string(parent ? parent : "/tmp") + "/delvio-thumbnail.XXXXXX";
    return mkdtemp(folder.data()) ? folder : "";
}

void remove_folder(const Job& job) {
    std::error_code error;
    if (job.owns_folder) std::filesystem::remove_all(job.folder, error);
}

// The program's picture is as untrusted as its file.
void decode_output(const Job& job, char** words) {
    const int file = open_plain_file(job.output);
    remove_folder(job);
    if (file < 0 || !hand_over(file)) return write_reply(Outcome::broken);
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::string decoder = self.parent_path() / "delvio-decode-image";
    char name[] = "thumbnail.png";
    char cage[] = "bubblewrap", no_cage[] = "plain";
    char* arguments[] = {const_cast<char*>(decoder.c_str()),
                         job.owns_folder ? no_cage : cage,
                         words[width],
                         words[height],
                         name,
                         nullptr};
    const sigset_t signals = awaited_signals();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    execv(decoder.c_str(), arguments);
    write_reply(Outcome::none);
}

void make(int count, char** words) {
    Job job = {words[input], words[output_folder], "", 0, false};
    job.side = std::max(number_word(words[width]), number_word(words[height]));
    if (job.folder.empty()) {
        job.folder = temporary_folder();
        job.owns_folder = true;
    }
    if (job.folder.empty()) return write_reply(Outcome::none);
    job.output = job.folder + "/thumbnail.png";
    Words command = {words[program]};
    for (int i = program + 1; i < count; i++) command.push_back(expanded(words[i], job));
    const Run result = run(command, job, number_word(words[seconds]));
    if (result == Run::done) return decode_output(job, words);
    // The folder goes before the reply, because the reply ends us.
    remove_folder(job);
    switch (result) {
        case Run::too_slow:
            return write_reply(Outcome::too_slow);
        case Run::failed:
            return write_reply(Outcome::broken);
        default:
            return write_reply(Outcome::none);
    }
}

}  // namespace

int main(int count, char** words) {
    if (count <= program) {
        write_reply(count == 1 ? Outcome::ready : Outcome::none);
        return 0;
    }
    make(count, words);
    // Processes that the program left running end with us: all of us are one process group.
    kill(0, SIGKILL);
    return 0;
}
