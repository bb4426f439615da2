#include "faults/faulty_run.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <regex>
#include <set>
#include <sstream>

#include "support/temp_folder.h"

namespace faults {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longest_standstill = std::chrono::minutes(1);
constexpr double longest_work = 120;  // seconds of the processor
constexpr int microseconds_a_turn = 5000;

std::string temporary(const char* name) {
    const char* folder = getenv("TMPDIR");
    return std::string(folder ? folder : "/tmp") + "/" + name + "." + std::to_string(getpid());
}

double processor_seconds(pid_t process) {
    std::istringstream words(test::read_file("/proc/" + std::to_string(process) + "/stat"));
    std::string word;
    std::getline(words, word, ')');
    for (int i = 3; i < 14; i++) words >> word;
    double user = 0, system = 0;
    words >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

void redirect(const std::string& file, int standard) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(descriptor, standard);
    close(descriptor);
}

pid_t start(const SharedControl& control, const Words& words, const Variables& variables,
            const std::string& out, const std::string& err) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    redirect(out, STDOUT_FILENO);
    redirect(err, STDERR_FILENO);
    setenv(variable, control.path().c_str(), 1);
    setenv("LD_PRELOAD", FAILING_LIBRARY, 1);
    for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
    execv(arguments[0], arguments.data());
    _exit(127);
}

// Process numbers and the names of temporary files differ from run to run.
std::string without_numbers(const std::string& line) {
    return std::regex_replace(line, std::regex("[0-9]+"), "0");
}

// Notices that nothing moves in a program any more.
class Watch {
  public:
    Watch(const SharedControl& control, pid_t process) : control_(control), process_(process) {}

    bool is_hanging() {
        const double seconds = processor_seconds(process_);
        const long calls = control_.calls();
        if (seconds != seconds_ || calls != calls_) moved_ = Clock::now();
        seconds_ = seconds;
        calls_ = calls;
        return seconds > longest_work || Clock::now() - moved_ > longest_standstill;
    }

  private:
    const SharedControl& control_;
    const pid_t process_;
    double seconds_ = 0;
    long calls_ = 0;
    Clock::time_point moved_ = Clock::now();
};

}  // namespace

SharedControl::SharedControl() : path_(temporary("faults")) {
    const int file = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ftruncate(file, sizeof(Control)) != 0) abort();
    void* const memory =
        mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED) abort();
    control_ = static_cast<Control*>(memory);
}

SharedControl::~SharedControl() {
    munmap(control_, sizeof(Control));
    unlink(path_.c_str());
}

void SharedControl::arm(Family family, long at) {
    control_->family = families;
    for (auto& calls : control_->calls) calls = 0;
    control_->failed = 0;
    control_->only = 0;
    control_->first = 0;
    memset(control_->files_at_end, 0, sizeof control_->files_at_end);
    control_->at = at;
    control_->times = 1;
    control_->family = family;
}

long SharedControl::calls() const {
    long sum = 0;
    for (const auto& calls : control_->calls) sum += calls;
    return sum;
}

Ended run_with_faults(const SharedControl& control, const Words& words, const Variables& variables,
                      const std::function<void()>& turn) {
    const std::string out = temporary("out"), err = temporary("err");
    const auto begin = Clock::now();
    const pid_t process = start(control, words, variables, out, err);
    Ended ended;
    Watch watch(control, process);
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (turn) turn();
        usleep(microseconds_a_turn);
        if (!watch.is_hanging()) continue;
        ended.hung = true;
        kill(process, SIGABRT);
        waitpid(process, &status, 0);
        break;
    }
    ended.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    ended.out = test::read_file(out);
    ended.err = test::read_file(err);
    return ended;
}

std::string SharedControl::leaked_since(const std::string& clean) const {
    std::multiset<std::string> known;
    std::istringstream before(clean), now(control_->files_at_end);
    for (std::string line; std::getline(before, line);) known.insert(without_numbers(line));
    std::string leaked;
    for (std::string line; std::getline(now, line);) {
        if (line.starts_with("anon_inode:")) continue;  // GLib's own, for watches and wake-ups
        if (line == temporary("out") || line == temporary("err")) continue;  // it began with these
        const auto found = known.find(without_numbers(line));
        if (found != known.end()) {
            known.erase(found);
        } else {
            leaked += line + "\n";
        }
    }
    return leaked;
}

bool is_slow(double seconds, double clean, const std::function<double(bool)>& again) {
    constexpr int tries = 3;
    const auto is_longer = [](double one, double other) { return one > other + 1; };
    bool is_longer_each_time = is_full_run() && is_longer(seconds, clean);
    for (int i = 0; i < tries && is_longer_each_time; i++) {
        const double failing = again(true);
        is_longer_each_time = is_longer(failing, again(false));
    }
    return is_longer_each_time;
}

bool is_full_run() { return getenv("DELVIO_FAULTS") != nullptr; }

std::vector<Family> families_to_try() {
    const char* const wanted = getenv("DELVIO_FAULTS");
    const std::string words = wanted ? wanted : "all";
    std::vector<Family> chosen;
    for (int family = 0; family < families; family++) {
        if (words == "all" || words == family_names[family])
            chosen.push_back(static_cast<Family>(family));
    }
    return chosen;
}

std::vector<Family> families_to_try(std::initializer_list<Family> only) {
    std::vector<Family> chosen = families_to_try();
    std::erase_if(chosen, [&](Family family) {
        return std::find(only.begin(), only.end(), family) == only.end();
    });
    return chosen;
}

// A number that the environment gives, at least one.
static int wanted_number(const char* name, int otherwise = 1) {
    const char* const wanted = getenv(name);
    return wanted ? std::max(1, atoi(wanted)) : otherwise;
}

int fail_in_turn(long calls, int sample, const std::function<bool(long)>& try_one) {
    const bool is_full = is_full_run();
    const long wanted = long{sample} * wanted_number("DELVIO_FAULTS_TIMES");
    const long step = is_full ? 1 : std::max(1L, (calls + wanted - 1) / wanted);
    const long last = is_full ? wanted_number("DELVIO_FAULTS_TO", INT_MAX) : calls;
    int tried = 0;
    bool was_reached = true;
    long at = is_full ? wanted_number("DELVIO_FAULTS_FROM") : (step + 1) / 2;
    for (; at <= last && (at <= calls || was_reached); at += step) {
        was_reached = try_one(at);
        tried += was_reached;
    }
    return tried;
}

std::array<long, families> calls_made(const char* what, const SharedControl& control) {
    std::array<long, families> counts;
    std::copy(std::begin(control->calls), std::end(control->calls), counts.begin());
    printf("calls made in %s:", what);
    for (int family = 0; family < families; family++) {
        printf(" %s %ld", family_names[family], counts[static_cast<size_t>(family)]);
    }
    printf("\n");
    return counts;
}

void tell_tried(const char* what, const std::array<int, families>& tried) {
    printf("calls tried in %s:", what);
    for (const Family family : families_to_try()) {
        printf(" %s %d", family_names[family], tried[family]);
    }
    printf("\n");
}

}  // namespace faults
