#include "offers/notice.h"

#include <host/session_bus.h>
#include <host/text.h>

#include <algorithm>

#include "file_steps/visible_text.h"
#include "offers/detached_program.h"
#include "settings/setting_store.h"

using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::State;
using operations::window_name;

namespace {

std::string title_of(const Request& request) {
    const std::string folder = window_name(request.destination);
    switch (request.kind) {
        case Kind::Move:
            return translated("Moved to %s", {folder});
        case Kind::Copy:
            return translated("Copied to %s", {folder});
        case Kind::Alias:
            return translated("Alias made in %s", {folder});
        case Kind::Trash:
            break;
    }
    return translated("Moved to the trash");
}

bool is_wanted() { return read_setting(*find_setting(notices_setting)).value.number != 0; }

bool has(const Report& report, State state) {
    return std::ranges::any_of(report.outcomes,
                               [=](const Outcome& outcome) { return outcome.state == state; });
}

std::string files_in(const Report& report) {
    std::string first;
    unsigned long others = 0;
    for (const Outcome& outcome : report.outcomes) {
        if (outcome.state != State::Done) continue;
        if (first.empty()) {
            first = window_name(outcome.source);
        } else {
            others++;
        }
    }
    if (others == 0) return first;
    return translated_count("%s and %s other", "%s and %s others", others,
                            {first, std::to_string(others)});
}

}  // namespace

void offer_undo(const Request& request, const Report& report) {
    if (report.operation.empty() || has(report, State::Failed) || !has(report, State::Done)) return;
    if (!files::has_session_bus() || !is_wanted()) return;
    start_own_program({notice_argument, report.operation, title_of(request), files_in(report)});
}
