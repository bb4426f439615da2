#include "file_managers/manager_entries.h"

#include <glib.h>
#include <host/text.h>

#include <filesystem>

#include "file_managers/gworkspace_bundle.h"
#include "finderkit/plug_in.h"

namespace {

// Only an installed Delvio has its icon in the icon theme.
std::string icon_for(const std::string& command) {
    const std::string share = std::filesystem::path(command).parent_path().parent_path() / "share";
    std::error_code error;
    const bool has_icon = std::filesystem::exists(
        share + "/icons/hicolor/scalable/apps/org.delvio.Delvio.svg", error);
    return has_icon ? "org.delvio.Delvio" : "folder";
}

// The reason why file managers cannot be told this command, if there is one.
std::string command_problem(const Invocation& invocation) {
    if (!g_utf8_validate(invocation.command.c_str(), -1, nullptr)) {
        // A file of actions with such a name is one that the file manager cannot read.
        return translated("the path of the command is not UTF-8: %s", {invocation.command});
    }
    if (invocation.command.find('\n') != std::string::npos) {
        return translated("the path of the command has a line break: %s", {invocation.command});
    }
    return {};
}

std::string refusal(const std::vector<EntryFile>& files) {
    std::string problem;
    for (const EntryFile& file : files) {
        if (state_of(file, &problem) == EntryState::refused) return problem;
    }
    return {};
}

EntryChange change_bundles(bool is_removal) {
    const BundleChange change = change_gworkspace_bundles(is_removal);
    EntryChange answer;
    answer.problem = change.problem;
    if (change.has_changed) answer.paths.push_back(change.path);
    return answer;
}

}  // namespace

bool find_invocation(Invocation* invocation, std::string* problem) {
    invocation->command = find_command(problem);
    invocation->icon = icon_for(invocation->command);
    return problem->empty() && !invocation->command.empty();
}

EntryState state_of(const FileManager& manager, const Invocation& invocation,
                    std::string* problem) {
    if (!manager.files) return state_of_gworkspace(problem);
    bool has_present = false, has_absent = false;
    for (const EntryFile& file : manager.files(invocation)) {
        const EntryState state = state_of(file, problem);
        if (state == EntryState::refused || state == EntryState::other) return state;
        (state == EntryState::present ? has_present : has_absent) = true;
    }
    if (has_present && has_absent) return EntryState::other;
    return has_present ? EntryState::present : EntryState::absent;
}

EntryChange put_in(const FileManager& manager, const Invocation& invocation) {
    if (!manager.files) return change_bundles(false);
    EntryChange change;
    change.problem = command_problem(invocation);
    if (!change.problem.empty()) return change;
    const std::vector<EntryFile> files = manager.files(invocation);
    change.problem = refusal(files);
    for (const EntryFile& file : files) {
        if (!change.problem.empty()) break;
        if (put_in(file, &change.problem)) change.paths.push_back(file.path);
    }
    return change;
}

// The last file goes first, as the folders were made for the first one.
EntryChange take_out(const FileManager& manager, const Invocation& invocation) {
    if (!manager.files) return change_bundles(true);
    EntryChange change;
    const std::vector<EntryFile> files = manager.files(invocation);
    for (auto file = files.rbegin(); file != files.rend() && change.problem.empty(); ++file) {
        if (take_out(*file, &change.problem)) change.paths.push_back(file->path);
    }
    return change;
}
