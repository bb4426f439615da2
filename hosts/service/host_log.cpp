#include "service/host_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "file_steps/visible_text.h"

namespace {

constexpr off_t longest_log = 256 << 10;

operations::Descriptor& log_file() {
    static auto& file = *new operations::Descriptor;
    return file;
}

std::string time_text() {
    const time_t now = time(nullptr);
    tm parts = {};
    char text[sizeof "2000-01-01 00:00:00 "] = "";
    if (localtime_r(&now, &parts)) strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S ", &parts);
    return text;
}

}  // namespace

// Without a file for the log, the streams must still leave the last caller's output.
void begin_host_log(operations::Descriptor file) {
    if (!file) file = operations::Descriptor(open("/dev/null", O_WRONLY | O_CLOEXEC));
    log_file() = std::move(file);
}

void log_line(const std::string& text) {
    if (!log_file()) return;
    struct stat status;
    const bool is_long = fstat(log_file().get(), &status) == 0 && status.st_size > longest_log;
    if (is_long && ftruncate(log_file().get(), 0) != 0) return;
    const std::string line = time_text() + operations::visible_text(text) + "\n";
    operations::write_fully(log_file().get(), line.data(), line.size());
}

int host_log_file() { return log_file().get(); }
