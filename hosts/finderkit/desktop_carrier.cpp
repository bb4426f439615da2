#include "finderkit/desktop_carrier.h"

#include <host/text.h>
#include <host/glib_owners.h>
#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include <utility>

#include "file_steps/visible_text.h"
#include "file_steps/work.h"
#include "finderkit/desktop_managers.h"
#include "finderkit/session_bus.h"
#include "operations/engine.h"
#include "operations/request_queue.h"

namespace {

using operations::Carrier;
using operations::Kind;
using operations::Observer;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::RequestQueue;
using operations::State;

class DesktopCarrier : public Carrier {
  public:
    explicit DesktopCarrier(std::unique_ptr<Carrier> other) : other_(std::move(other)) {}
    void carry_out(Request request, std::shared_ptr<Observer> observer) override {
        queue_.add({std::move(request), std::move(observer)});
    }

  private:
    void hand_over(RequestQueue::Job job);

    const std::unique_ptr<Carrier> other_;
    // The queue is destroyed before `other_`.
    RequestQueue queue_{[this](RequestQueue::Job job) { hand_over(std::move(job)); }};
};

// Why the source cannot be handed over; empty when it can.
std::string why_not(const std::string& source) {
    struct stat status;
    if (lstat(source.c_str(), &status) == 0) return "";
    const std::string name = operations::quoted_name(source);
    return errno == ENOENT ? translated("%s is no longer there", {name})
                           : translated("%s: %s", {name, error_text(errno)});
}

// The request without the sources that cannot be handed over; their outcomes say why.
Request without_missing(const Request& request, Report* report) {
    Request rest = request;
    rest.sources.clear();
    for (const std::string& source : request.sources) {
        const std::string reason = why_not(source);
        const State state = reason.empty() ? State::Done : State::Failed;
        report->outcomes.push_back({source, state, "", reason});
        if (reason.empty()) rest.sources.push_back(source);
    }
    return rest;
}

bool is_folder(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void refuse(Report* report, const std::string& reason) {
    for (Outcome& outcome : report->outcomes) {
        if (outcome.state != State::Done) continue;
        outcome.state = State::Failed;
        outcome.reason = reason;
    }
}

// Asks each manager until one is there.
Handover ask(const Request& request, std::string* reason) {
    const files::ObjectOwner<GDBusConnection> bus = connect_to_session_bus();
    if (!bus) return Handover::absent;
    for (const DesktopManager* manager : managers_on_bus(bus.get())) {
        const Handover result = ask_manager(bus.get(), *manager, request, reason);
        if (result == Handover::taken) operations::note_done_elsewhere(request, manager->name);
        if (result != Handover::absent) return result;
    }
    return Handover::absent;
}

bool can_be_asked_for(const Request& request) {
    if (request.kind == Kind::Trash) return true;
    return request.kind != Kind::Alias && !request.replace && is_folder(request.destination);
}

void DesktopCarrier::hand_over(RequestQueue::Job job) {
    Report report;
    std::string reason;
    Handover result = Handover::absent;
    if (job.observer->is_cancelled()) {
        report.stopped = true;
        for (const std::string& source : job.request.sources) {
            report.outcomes.push_back({source, State::Skipped, "", translated("stopped")});
        }
        return job.observer->ended(report);
    }
    if (can_be_asked_for(job.request)) {
        const Request rest = without_missing(job.request, &report);
        result = rest.sources.empty() ? Handover::taken : ask(rest, &reason);
    }
    if (result == Handover::absent) {
        return other_->carry_out(std::move(job.request), std::move(job.observer));
    }
    if (result == Handover::refused) refuse(&report, reason);
    job.observer->ended(report);
}

}  // namespace

std::unique_ptr<Carrier> make_desktop_carrier(std::unique_ptr<Carrier> other) {
    return std::make_unique<DesktopCarrier>(std::move(other));
}
