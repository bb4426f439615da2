#include "settings_ui/manager_switches.h"

#include <host/text.h>

#include <algorithm>

#include "file_managers/manager_entries.h"

namespace {

ShownManager shown(const FileManager& manager, const Invocation& invocation) {
    ShownManager answer = {manager.title, translated(manager.place), false};
    std::string problem;
    switch (state_of(manager, invocation, &problem)) {
        case EntryState::present:
            answer.has_delvio = true;
            break;
        case EntryState::other:
            answer.place = translated("It has another Delvio; this one can take its place.");
            break;
        case EntryState::refused:
            answer.place = problem;
            break;
        case EntryState::absent:
            break;
    }
    return answer;
}

const FileManager* manager_titled(const std::string& title) {
    for (const FileManager& manager : file_managers()) {
        if (title == manager.title) return &manager;
    }
    return nullptr;
}

}  // namespace

std::vector<ShownManager> shown_managers() {
    std::vector<ShownManager> shown_ones;
    Invocation invocation;
    std::string problem;
    if (!find_invocation(&invocation, &problem)) return {};
    for (const FileManager& manager : file_managers()) {
        if (is_found(manager)) shown_ones.push_back(shown(manager, invocation));
    }
    return shown_ones;
}

bool lacks_managers(const std::vector<ShownManager>& managers) {
    return !managers.empty() && std::ranges::none_of(managers, &ShownManager::has_delvio);
}

SwitchedManager switch_manager(const ShownManager& manager) {
    Invocation invocation;
    std::string problem;
    const FileManager* const found = manager_titled(manager.title);
    if (!found || !find_invocation(&invocation, &problem)) return {problem, true};
    const EntryChange change =
        manager.has_delvio ? take_out(*found, invocation) : put_in(*found, invocation);
    if (!change.problem.empty()) return {change.problem, true};
    const char* const done =
        manager.has_delvio
            ? to_translate("%s is without Delvio from its next start on.")
            : to_translate("%s has Delvio from its next start on: close all its windows first.");
    return {translated(done, {manager.title}), false};
}
