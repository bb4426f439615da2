#include "quicklook/icon_decoder.h"

#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

#include "corefoundation/patient_stat.h"
#include "quicklook/thumbnail_maker.h"

namespace thumbnails {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

const size_t threads = 2, most_waiting = 256;
const int64_t largest_file = 4 << 20;
// The time for the icons of one folder. Without it, a folder full of slow icons would keep the
// processors busy for hours.
const Seconds patience_with_folder{10};

struct Request {
    std::string path;
    int side;
    IconStamp known;
    IconDone done;
};

// Icons are small: a file that needs more than this is no icon.
Settings tight_settings() {
    Settings settings;
    settings.helper_folder = helper_folder();
    settings.stat_seconds = 1;
    settings.decoder_seconds = 10;
    settings.processor_seconds = 2;
    settings.memory = 512;
    settings.at_once = settings.at_most = threads;
    return settings;
}

IconStamp stamp_of(const std::string& path, double seconds) {
    const std::optional<struct stat> status = files::patient_stat(path, seconds);
    if (!status || !S_ISREG(status->st_mode)) return {};
    if (status->st_size == 0 || status->st_size > largest_file) return {};
    return {status->st_dev, status->st_ino,
            status->st_mtim.tv_sec * 1000000000 + status->st_mtim.tv_nsec, status->st_size};
}

class Decoder {
  public:
    void add(Request request);

  private:
    void work();
    bool start_thread();
    Request next();
    std::optional<DecodedIcon> decode(const Request& request);
    bool is_worth_it(const std::string& folder);

    const Settings settings_ = tight_settings();
    ThumbnailMaker maker_{settings_};
    std::mutex lock_;
    std::condition_variable has_work_;
    std::deque<Request> waiting_;  // the newest in front
    size_t started_ = 0;
    std::map<std::string, Seconds> spent_;  // by folder
};

void Decoder::add(Request request) {
    std::optional<Request> dropped;
    {
        const std::lock_guard guard(lock_);
        waiting_.push_front(std::move(request));
        if (waiting_.size() > most_waiting) {
            dropped = std::move(waiting_.back());
            waiting_.pop_back();
        }
        if (started_ < threads && start_thread()) started_++;
        if (started_ == 0) {
            dropped = std::move(waiting_.front());
            waiting_.pop_front();
        }
        has_work_.notify_one();
    }
    if (dropped) dropped->done({});
}

// False when no thread can be started.
bool Decoder::start_thread() {
    try {
        std::thread([this] { work(); }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

Request Decoder::next() {
    std::unique_lock guard(lock_);
    has_work_.wait(guard, [this] { return !waiting_.empty(); });
    Request request = std::move(waiting_.front());
    waiting_.pop_front();
    return request;
}

void Decoder::work() {
    for (;;) {
        const Request request = next();
        request.done(decode(request));
    }
}

bool Decoder::is_worth_it(const std::string& folder) {
    const std::lock_guard guard(lock_);
    const auto found = spent_.find(folder);
    return found == spent_.end() || found->second < patience_with_folder;
}

std::optional<DecodedIcon> Decoder::decode(const Request& request) {
    const std::string folder = request.path.substr(0, request.path.rfind('/'));
    if (!is_worth_it(folder)) return {};
    const Clock::time_point start = Clock::now();
    DecodedIcon icon = {stamp_of(request.path, settings_.stat_seconds), {}};
    if (icon.stamp != IconStamp{} && icon.stamp != request.known) {
        icon.picture = maker_.decode_image(request.path, {request.side, request.side});
    }
    // Icons that are quick to look at may come as often as they like.
    const Seconds taken = Clock::now() - start;
    if (!icon.picture && taken > Seconds{0.5}) {
        const std::lock_guard guard(lock_);
        spent_[folder] += taken;
    }
    return icon;
}

}  // namespace

void decode_icon(const std::string& path, int side, const IconStamp& known, IconDone done) {
    static Decoder& decoder = *new Decoder;
    decoder.add({path, side, known, std::move(done)});
}

}  // namespace thumbnails
