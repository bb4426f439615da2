#include "service/resident_host.h"

#include <host/text.h>

#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>
#include <host/process.h>

#include <fcntl.h>
#include <malloc.h>
#include <stdlib.h>
#include <unistd.h>

#include <list>
#include <optional>

#include "command/command_line.h"
#include "command/exit_signals.h"
#include "command/home_folder.h"
#include "corefoundation/descriptor_watch.h"
#include "finderkit/plug_in.h"
#include "finderkit/settings_file.h"
#include "popup/application.h"
#include "popup/asked_operations.h"
#include "popup/fonts_ahead.h"
#include "popup/menu_command.h"
#include "resident/host_start.h"
#include "resident/meeting_place.h"
#include "resident/session.h"
#include "service/bus_name.h"
#include "service/callers.h"
#include "service/freshness.h"
#include "service/giving_way.h"
#include "service/host_log.h"
#include "service/start_memory.h"
#include "service/surroundings.h"

namespace {

constexpr NSTimeInterval time_to_settle = 3;

using operations::Descriptor;
using resident::Received;
using resident::Verdict;

constexpr double seconds_idle = 600;
constexpr unsigned seconds_to_start = 60;
constexpr size_t most_silent_guests = 32;

double longest_idle() {
    const char* const wanted = getenv("DELVIO_IDLE_SECONDS");
    const double seconds = wanted ? strtod(wanted, nullptr) : 0;
    return seconds > 0 ? seconds : seconds_idle;
}

struct Guest {
    std::unique_ptr<Caller> caller;
    std::unique_ptr<DescriptorWatch> watch;  // ends before its descriptor is closed
};

class Host {
  public:
    Host(const std::string& name, const resident::MeetingPlace& place)
        : environment_(resident::own_environment()),
          fixed_(resident::fixed_variables(environment_)),
          place_(place),
          socket_file_(place.socket_file()),
          listener_(resident::listening_descriptor) {
        fcntl(listener_.get(), F_SETFD, FD_CLOEXEC);
        fcntl(listener_.get(), F_SETFL, O_NONBLOCK);
        log_line("starts as " + name);
    }

    bool prepare(char* program);
    void serve_calls();

  private:
    void accept_guests();
    void hear(Guest* guest);
    void hear_silent(Guest* guest);
    void hear_current();
    void close_menu(int signal);
    void decide(std::unique_ptr<Guest> guest);
    std::unique_ptr<Guest> take_silent(Guest* guest);
    void serve_next();
    int run(const Caller& caller);
    std::optional<int> run_in_surroundings(const Caller& caller);
    void end(const std::string& why);
    void settle();
    void watch_signals();

    const std::vector<std::string> environment_;  // as the host was started
    const std::vector<std::string> fixed_;
    const resident::MeetingPlace& place_;
    const std::optional<resident::SocketFile> socket_file_;
    Descriptor listener_;
    Descriptor signals_[2];
    std::unique_ptr<DescriptorWatch> listener_watch_, signal_watch_;
    std::unique_ptr<Freshness> freshness_;
    std::optional<BusName> bus_name_;
    std::list<std::unique_ptr<Guest>> silent_;  // connected, and have sent no call yet
    std::unique_ptr<Guest> next_, current_;
    NSDate* idle_end_ = nil;
    bool ends_ = false;
    bool has_start_memory_ = true;
};

bool Host::prepare(char* program) {
    std::string problem;
    alarm(
        seconds_to_start);  // a display that does not answer would hold the first caller's streams
    {
        const FontsAhead fonts;
        prepare_toolkit(program);
    }
    if (!ensure_home_folder(&problem) || !prepare_menus(&problem)) {
        log_line("cannot start: " + problem);
        return false;
    }
    alarm(0);
    freshness_ = std::make_unique<Freshness>();
    const std::string command = find_command(&problem);
    if (!command.empty()) bus_name_.emplace(command, environment_);
    listener_watch_ =
        std::make_unique<DescriptorWatch>(listener_.get(), [this] { accept_guests(); });
    watch_signals();
    return true;
}

void Host::watch_signals() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    signals_[0] = Descriptor(ends[0]);
    signals_[1] = Descriptor(ends[1]);
    signal_watch_ = std::make_unique<DescriptorWatch>(ends[0], [this] {
        char byte;
        while (read(signals_[0].get(), &byte, 1) > 0) {
        }
        wake_main_loop();
    });
    set_signal_descriptor(ends[1]);
}

void Host::accept_guests() {
    while (auto caller = accept_caller(listener_.get())) {
        auto guest = std::make_unique<Guest>();
        Guest* const heard = guest.get();
        guest->caller = std::move(caller);
        guest->watch = std::make_unique<DescriptorWatch>(guest->caller->socket.get(),
                                                         [this, heard] { hear(heard); });
        silent_.push_back(std::move(guest));
        if (silent_.size() > most_silent_guests) silent_.pop_front();
    }
}

void Host::hear(Guest* guest) {
    if (guest == current_.get()) return hear_current();
    if (guest != next_.get()) return hear_silent(guest);
    log_line("a caller has gone before its menu was shown");
    next_.reset();
}

std::unique_ptr<Guest> Host::take_silent(Guest* guest) {
    for (auto each = silent_.begin(); each != silent_.end(); ++each) {
        if (each->get() != guest) continue;
        std::unique_ptr<Guest> taken = std::move(*each);
        silent_.erase(each);
        return taken;
    }
    return nullptr;
}

void Host::hear_silent(Guest* guest) {
    resident::Packet packet;
    const Received received = resident::receive_packet(guest->caller->socket.get(), &packet);
    if (received == Received::nothing_yet) return;
    std::unique_ptr<Guest> taken = take_silent(guest);
    if (received == Received::packet && taken->caller->read_call(std::move(packet))) {
        return decide(std::move(taken));
    }
    log_line("a message that is no call was refused");
}

// What the caller of the open menu says: a signal that it has got, or that it has gone.
void Host::hear_current() {
    resident::Packet packet;
    const Received received = resident::receive_packet(current_->caller->socket.get(), &packet);
    if (received == Received::nothing_yet) return;
    const auto signal = resident::signal_of(packet.bytes);
    if (received == Received::packet && signal) {
        log_line("the caller was sent signal " + std::to_string(signal->number));
        return close_menu(static_cast<int>(signal->number));
    }
    log_line("the caller has gone");
    current_->watch.reset();
    close_menu(SIGHUP);
}

// Closes a panel that tells of a problem, too, which the menu has left.
void Host::close_menu(int signal) {
    act_on_signal(signal);
    [[MenuSession current] cancel];
    end_modal_session();
}

void Host::decide(std::unique_ptr<Guest> guest) {
    const Caller& caller = *guest->caller;
    const std::string change = ends_ ? "the host ends" : freshness_->change();
    if (!change.empty()) {
        end(change);
        [[MenuSession current] cancel];  // the next host needs the pointer and the keyboard
        return caller.answer(Verdict::outdated);
    }
    if (resident::fixed_variables(caller.call.environment) != fixed_) {
        log_line("a call from another session or with another locale was refused");
        return caller.answer(Verdict::elsewhere);
    }
    if (caller.call.arguments == std::vector<std::string>{resident::bus_argument}) {
        caller.answer(Verdict::taken);
        const bool is_owned = bus_name_ && bus_name_->is_owned();
        log_line(is_owned ? "owns its name on the bus" : "does not get its name on the bus");
        return caller.answer(Verdict::done, is_owned ? exit_done : exit_failed);
    }
    if (current_ && !open_menu_gives_way()) {
        log_line("a call came while a pick was carried out or a panel was open; it runs by itself");
        return caller.answer(Verdict::elsewhere);
    }
    if (next_) {
        log_line("a call gave way before its menu was shown");
        next_->caller->answer(Verdict::done, exit_done);
    }
    next_ = std::move(guest);
    if (!current_) return wake_main_loop();
    log_line("the open menu gives way to the next one");
    [[MenuSession current] cancel];
}

int Host::run(const Caller& caller) {
    std::string problem;
    if (!ensure_home_folder(&problem)) {
        complain_about_usage(problem);
        return exit_failed;
    }
    std::vector<std::string> words = caller.call.arguments;
    std::vector<char*> pointers{const_cast<char*>("delvio")};
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const CommandLine line =
        read_command_line(static_cast<int>(pointers.size()) - 1, pointers.data());
    if (line.command != CommandLine::menu || line.menu_request.form != MenuForm::shown) {
        return line.status;
    }
    problem = settings_problem();
    if (!problem.empty())
        complain_about_usage(translated("%s; the default settings are used", {problem}));
    [[NSUserDefaults standardUserDefaults] synchronize];
    return run_menu_command(line.menu_request);
}

// Null when the caller's files cannot be found from here.
std::optional<int> Host::run_in_surroundings(const Caller& caller) {
    const Surroundings surroundings(caller.call.environment, caller.call.file_mode_mask,
                                    {caller.folder.get(), caller.output.get(), caller.error.get()});
    if (!surroundings.has_folder()) return {};
    log_line("shows a menu");
    caller.answer(Verdict::taken);
    @autoreleasepool {
        return run(caller);
    }
}

void Host::serve_next() {
    current_ = std::move(next_);
    const Caller& caller = *current_->caller;
    const std::optional<int> status = run_in_surroundings(caller);
    forget_acted_signal();
    set_signal_descriptor(signals_[1].get());
    // The answer comes last: the host is idle for whoever has seen its client end.
    if (status) {
        log_line("the menu has closed with status " + std::to_string(*status));
        caller.answer(Verdict::done, *status);
    } else {
        log_line("the caller's folder cannot be entered; its call runs by itself");
        caller.answer(Verdict::elsewhere);
    }
    current_.reset();
    malloc_trim(0);
}

void Host::end(const std::string& why) {
    if (ends_) return;
    ends_ = true;
    log_line("ends: " + why);
    bus_name_.reset();
    const Descriptor lock = place_.lock();
    // Another host may have taken the place.
    if (socket_file_ && place_.socket_file() == socket_file_) place_.remove();
    accept_guests();  // those who have connected until now
    for (const auto& guest : silent_) guest->caller->answer(Verdict::outdated);
    wake_main_loop();
}

// Once, since the pages that the menus use come back with the next menu.
void Host::settle() {
    malloc_trim(0);
    if (!has_start_memory_) return;
    has_start_memory_ = false;
    give_back_start_memory();
}

void Host::serve_calls() {
    idle_end_ = [[NSDate alloc] initWithTimeIntervalSinceNow:longest_idle()];
    NSTimeInterval settled = 0;
    while (!ends_ || next_) {
        @autoreleasepool {
            if (next_) {
                serve_next();
                if (bus_name_) bus_name_->own();  // after the menu, so that it costs no time
                [idle_end_ release];
                idle_end_ = [[NSDate alloc] initWithTimeIntervalSinceNow:longest_idle()];
                settled = [[NSDate date] timeIntervalSinceReferenceDate] + time_to_settle;
            }
            if (signal_caught()) end("signal " + std::to_string(signal_caught()));
            if (ends_ || next_) continue;
            // What a menu leaves for a moment later, such as hiding a preview that has faded, runs
            // in the default mode. Later that mode would only look for services every 30 seconds.
            NSDate* const until = [NSDate dateWithTimeIntervalSinceReferenceDate:settled];
            const bool settles = [until timeIntervalSinceNow] > 0;
            NSEvent* event = [NSApp
                nextEventMatchingMask:NSAnyEventMask
                            untilDate:settles ? [until earlierDate:idle_end_] : idle_end_
                               inMode:settles ? NSDefaultRunLoopMode : NSEventTrackingRunLoopMode
                              dequeue:YES];
            if (event) [NSApp sendEvent:event];
            if (settles && [until timeIntervalSinceNow] <= 0) settle();
            if (!event && [idle_end_ timeIntervalSinceNow] <= 0) end("idle");
        }
    }
    [idle_end_ release];
}

}  // namespace

int run_resident_host(const std::string& name, char* program) {
    const resident::MeetingPlace place(name);
    if (!place) return exit_failed;
    begin_host_log(place.new_log());
    print_to(host_log_file(), host_log_file());
    outlive_broken_pipes();
    @autoreleasepool {
        Host host(name, place);
        if (!host.prepare(program)) return exit_failed;
        host.serve_calls();
    }
    return exit_done;
}
