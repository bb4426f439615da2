#include "resident/client.h"

#include <host/text.h>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <iterator>

#include "resident/ending_signals.h"
#include "resident/host_start.h"
#include "resident/meeting_place.h"
#include "resident/output_relay.h"
#include "resident/packets.h"
#include "resident/session.h"

namespace resident {

namespace {

constexpr int failed = 1;
// A host that starts on a busy machine needs a while. A host that has said nothing by then hangs.
constexpr int milliseconds_to_take = 30000, milliseconds_to_close = 2000;

// There is no way to ask for the mask without setting it.
uint32_t file_mode_mask() {
    const mode_t mask = umask(077);
    umask(mask);
    return mask;
}

bool send_call(int host, const Call& call, OutputRelay* output) {
    const Descriptor file = file_of(call), folder(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    const int out = output->output(), err = output->error();
    const bool is_sent = file && folder && out >= 0 && err >= 0 &&
                         send_message(host, CallHeader(), {file.get(), folder.get(), out, err});
    output->close_ends();
    return is_sent;
}

// Connects to the host, and starts one where none listens. The new host finds this connection
// waiting at its socket, so nobody waits for its start.
Descriptor connect(const MeetingPlace& place, const std::string& name, const std::string& program) {
    if (Descriptor host = place.connect()) return host;
    if (errno == EAGAIN) return Descriptor();  // it listens, but takes no more calls
    const Descriptor lock = place.lock();
    if (!lock) return Descriptor();
    if (Descriptor host = place.connect()) return host;  // another client was quicker
    if (errno == EAGAIN) return Descriptor();
    const Descriptor listener = place.listen();
    if (!listener) return Descriptor();
    Descriptor host = place.connect();
    if (host && start_host(program, name, listener)) return host;
    place.remove();
    return Descriptor();
}

enum class Event { answer, signal, end, silence };

// What a call is connected to.
struct Line {
    int host;
    const EndingSignals& signals;
    OutputRelay& output;
};

// Waits for the next thing to happen, and passes on what the host prints; milliseconds below 0 are
// for ever.
Event next_event(const Line& line, int milliseconds, Answer* answer) {
    for (;;) {
        pollfd waiting[2 + OutputRelay::streams] = {{line.host, POLLIN, 0},
                                                    {line.signals.descriptor(), POLLIN, 0}};
        line.output.watch(waiting + 2);
        const int ready = poll(waiting, std::size(waiting), milliseconds);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return ready == 0 ? Event::silence : Event::end;
        if (waiting[0].revents) {
            Packet packet;
            const Received received = receive_packet(line.host, &packet);
            if (received == Received::nothing_yet) continue;
            const auto read = answer_of(packet.bytes);
            if (received == Received::end || !read) return Event::end;
            *answer = *read;
            return Event::answer;
        }
        if (waiting[1].revents) return Event::signal;
        line.output.pass(waiting + 2);
    }
}

int complain_of_crash() {
    fprintf(stderr, "delvio: %s\n",
            translated("the program that showed the menu has ended unexpectedly; try again, or use "
                       "--no-resident"));
    return failed;
}

// A menu closes at a signal; if it does not, the client ends without it.
int end_by_signal(const Line& line) {
    const int number = line.signals.take();
    Answer answer;
    const bool has_closed = send_message(line.host, Signal{static_cast<uint32_t>(number)}) &&
                            next_event(line, milliseconds_to_close, &answer) == Event::answer;
    line.output.pass_rest(line.signals.descriptor(), false);
    return has_closed ? static_cast<int>(answer.status) : 128 + number;
}

int wait_for_end(const Line& line) {
    Answer answer;
    const Event event = next_event(line, -1, &answer);
    if (event == Event::signal) return end_by_signal(line);
    if (!line.output.pass_rest(line.signals.descriptor(), true)) return 128 + line.signals.take();
    const bool is_done = event == Event::answer && answer.verdict == Verdict::done;
    return is_done ? static_cast<int>(answer.status) : complain_of_crash();
}

struct Attempt {
    Verdict verdict = Verdict::elsewhere;
    int status = failed;  // for `done`
};

Attempt attempt(const MeetingPlace& place, const std::string& name, const std::string& program,
                const Call& call, const EndingSignals& signals) {
    const Descriptor host = connect(place, name, program);
    if (!host) return {};
    OutputRelay output;
    Answer answer;
    // A host that ends just now may drop the call unread. It is offered to another one.
    if (!send_call(host.get(), call, &output)) return {Verdict::outdated};
    const Line line = {host.get(), signals, output};
    switch (next_event(line, milliseconds_to_take, &answer)) {
        case Event::answer:
            if (answer.verdict != Verdict::taken) {
                return {answer.verdict, static_cast<int>(answer.status)};
            }
            return {Verdict::done, wait_for_end(line)};
        case Event::signal:
            return {Verdict::done, 128 + signals.take()};
        case Event::end:
            return {Verdict::outdated};
        case Event::silence:
            return {Verdict::elsewhere};
    }
    return {};
}

}  // namespace

std::optional<int> run_by_host(const std::vector<std::string>& arguments,
                               const std::string& program) {
    const Call call = {arguments, own_environment(), file_mode_mask()};
    const std::string files = seen_files();
    if (files.empty()) return {};
    const std::string name = host_name(call.environment, program, files);
    const MeetingPlace place(name);
    if (!place) return {};
    const EndingSignals signals;
    if (signals.descriptor() < 0) return {};
    constexpr int most_attempts = 2;
    for (int i = 0; i < most_attempts; ++i) {
        const Attempt made = attempt(place, name, program, call, signals);
        if (made.verdict == Verdict::done) return made.status;
        if (made.verdict == Verdict::elsewhere) return {};
    }
    return {};
}

}  // namespace resident
