#include "quicklook/thumbnail_maker.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <thread>

#include "corefoundation/patient_stat.h"
#include "quicklook/background.h"
#include "quicklook/helper_words.h"
#include "quicklook/size_words.h"
#include "quicklook/thumbnailers.h"

namespace thumbnails {

struct ThumbnailMaker::Request {
    Subject subject;
    Box box, made_box;
    std::string type;  // empty while unknown
    Route route;
    Screen screen = {};

    // A picture that the cache could keep has one of the cache's sizes.
    Box box_for(Route way) const { return is_drawn_for_screen(way) ? box : made_box; }
};

namespace {

const double probe_seconds = 5;
// The helper program ends itself a little after we would end it, so that it does not outlive us.
const double own_end = 2;
// The helper limits the time of a thumbnailer program; then it needs this long to answer us.
const double time_to_answer = 3;
const size_t most_timed_out = 64;

bool is_same(const Subject& a, const Subject& b) {
    return a.modified == b.modified && a.size == b.size;
}

// No value for anything but a plain file with something in it.
std::optional<Subject> look_at(const std::string& path, double seconds) {
    const std::optional<struct stat> status = files::patient_stat(path, seconds);
    if (!status || !S_ISREG(status->st_mode) || status->st_size == 0) return {};
    return Subject{path, status->st_mtime, status->st_size};
}

// The form of a path that other programs use for their entries in the cache.
std::string canonical(const std::string& path) {
    return files::taken_text(g_canonicalize_filename(path.c_str(), "/"));
}

// An unknown type is tried as an image.
const char* mode_of(Route route) {
    if (route == Route::program) return "program";
    const OwnDecoder* decoder = decoder_of(route);
    return decoder ? decoder->name : "image";
}

std::string whole(double seconds) { return std::to_string(static_cast<int>(seconds + 0.999)); }

struct Call {
    const char* mode;
    bool is_caged;
    unsigned megabytes;
    double processor_seconds, seconds;
    Box box;
    Screen screen;
    std::string size_words, path;
};

std::vector<std::string> words_of(const Call& call) {
    using namespace helper_words;
    std::vector<std::string> words(command - 1);
    const auto word = [&words](Place place) -> std::string& { return words[place - mode]; };
    word(mode) = call.mode;
    word(cage) = call.is_caged ? "bubblewrap" : "plain";
    word(megabytes) = std::to_string(call.megabytes);
    word(processor_seconds) = whole(call.processor_seconds);
    word(seconds) = whole(call.seconds + own_end);
    word(width) = std::to_string(call.box.width);
    word(height) = std::to_string(call.box.height);
    word(scale) = std::to_string(std::lround(call.screen.scale * 100));
    word(paper) = call.screen.is_dark ? "dark" : "light";
    word(sizes) = call.size_words;
    word(path) = call.path;
    return words;
}

}  // namespace

ThumbnailMaker::ThumbnailMaker(Settings settings)
    : settings_(std::move(settings)),
      turns_(settings_.at_once, settings_.at_most, std::chrono::milliseconds(1500)) {}

Picture ThumbnailMaker::make(const std::string& path, Box box, const Screen& screen) {
    try {
        return find(canonical(path), box, screen);
    } catch (const std::exception&) {
        return {};  // no memory for it
    }
}

Picture ThumbnailMaker::decode_image(const std::string& path, Box box) {
    try {
        if (settings_.helper_folder.empty()) return {};
        const Turns::Turn turn(turns_);
        return fitted(run(Route::image, {{path}, box, box, "", Route::image}).picture, box);
    } catch (const std::exception&) {
        return {};
    }
}

Picture ThumbnailMaker::find(const std::string& path, Box box, const Screen& screen) {
    Request request = {{}, box, cache_box(box), type_by_name(path), Route::none, screen};
    request.route = route_for(request.type);
    const std::optional<Subject> subject = look_at(path, settings_.stat_seconds);
    if (!subject) return {};
    request.subject = *subject;
    if (!is_drawn_for_screen(request.route)) {
        if (Picture picture = cached_picture(*subject, box)) return picture;
    }
    if (request.route == Route::none || settings_.helper_folder.empty()) return {};
    if (has_failed(*subject) || timed_out_before(*subject)) return {};
    const Turns::Turn turn(turns_);
    return decode(request);
}

Picture ThumbnailMaker::decode(Request& request) {
    Answer answer = decode_by_content(request);
    if (!answer.picture) {
        note_failure(request, answer);
        return {};
    }
    const std::optional<Subject> after = look_at(request.subject.path, settings_.stat_seconds);
    if (after && is_same(*after, request.subject) && !is_drawn_for_screen(request.route)) {
        const Origin origin = {request.type, static_cast<int>(answer.reply.original_width),
                               static_cast<int>(answer.reply.original_height)};
        run_in_background([subject = *after, picture = answer.picture, box = request.made_box,
                           origin] { store_picture(subject, picture, box, origin); });
    }
    return fitted(std::move(answer.picture), request.box);
}

// A name may lie, and a decoder may not know an image type that a thumbnailer program knows: the
// content then tells what to try next.
Answer ThumbnailMaker::decode_by_content(Request& request) {
    Answer answer = run(request.route, request);
    if (answer.reply.outcome != Outcome::unsupported) return answer;
    const std::string seen = answer.reply.type;
    if (!seen.empty()) request.type = seen;
    Route next = route_for(request.type);
    const bool tried = next == request.route || next == Route::image;
    if (tried && !thumbnailer_for(request.type).empty()) next = Route::program;
    const bool is_decoded = next != Route::image && decoder_of(next);
    if (!is_decoded && next != Route::program) return answer;
    if (next == request.route) return answer;
    request.route = next;
    return run(next, request);
}

std::vector<std::string> ThumbnailMaker::words(Route route, const Request& request) {
    const bool is_program = route == Route::program;
    std::vector<std::string> words = words_of(
        {mode_of(route), bubblewrap_works(is_program), settings_.memory * (is_program ? 2 : 1),
         is_program ? settings_.program_seconds : settings_.processor_seconds,
         is_program ? settings_.program_seconds : settings_.decoder_seconds, request.box_for(route),
         request.screen, settings_.size_words, request.subject.path});
    if (is_program) {
        words.push_back(whole(settings_.program_seconds));
        const std::vector<std::string> command = thumbnailer_for(request.type);
        words.insert(words.end(), command.begin(), command.end());
    }
    return words;
}

Answer ThumbnailMaker::run(Route route, const Request& request) {
    const double seconds = route == Route::program ? settings_.program_seconds + time_to_answer
                                                   : settings_.decoder_seconds;
    Answer answer = run_helper(helper(), words(route, request), request.box_for(route), seconds);
    // The reply has the size of the program's picture, not of the file's.
    if (route == Route::program) answer.reply.original_width = answer.reply.original_height = 0;
    return answer;
}

void ThumbnailMaker::note_failure(const Request& request, const Answer& answer) {
    const bool is_broken =
        answer.ending == Ending::broke_off ||
        (answer.ending == Ending::answered && answer.reply.outcome == Outcome::broken);
    if (is_broken) run_in_background([subject = request.subject] { store_failure(subject); });
    const bool is_slow =
        answer.ending == Ending::timed_out ||
        (answer.ending == Ending::answered && answer.reply.outcome == Outcome::too_slow);
    if (!is_slow) return;
    // The disk may be at fault, so the failure is remembered only in this process.
    const std::lock_guard guard(lock_);
    if (timed_out_.size() >= most_timed_out) timed_out_.clear();
    timed_out_[request.subject.path] = request.subject;
}

bool ThumbnailMaker::timed_out_before(const Subject& subject) {
    const std::lock_guard guard(lock_);
    const auto found = timed_out_.find(subject.path);
    return found != timed_out_.end() && is_same(found->second, subject);
}

std::string ThumbnailMaker::helper() const {
    return settings_.helper_folder + "/" + helper_words::program;
}

bool ThumbnailMaker::helper_starts(bool in_bubblewrap, bool for_programs) const {
    const Call call = {for_programs ? "ready-program" : "ready",
                       in_bubblewrap,
                       settings_.memory,
                       probe_seconds,
                       probe_seconds,
                       {1, 1},
                       {},
                       "",
                       ""};
    const Answer answer = run_helper(helper(), words_of(call), call.box, probe_seconds);
    return answer.ending == Ending::answered && answer.reply.outcome == Outcome::ready;
}

// Containers may forbid what bubblewrap needs, so one try finds out.
bool ThumbnailMaker::bubblewrap_works(bool for_programs) {
    if (!settings_.use_bubblewrap) return false;
    std::call_once(bubblewrap_tried_[for_programs], [this, for_programs] {
        bubblewrap_works_[for_programs] = helper_starts(true, for_programs);
    });
    return bubblewrap_works_[for_programs];
}

ThumbnailMaker& shared_thumbnail_maker() {
    static ThumbnailMaker& maker = [&]() -> ThumbnailMaker& {
        Settings settings;
        settings.helper_folder = helper_folder();
        settings.size_words = size_words();
        settings.at_once = std::clamp<size_t>(std::thread::hardware_concurrency(), 2, 4);
        return *new ThumbnailMaker(std::move(settings));
    }();
    return maker;
}

}  // namespace thumbnails
