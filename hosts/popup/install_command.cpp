#include "popup/install_command.h"

#include <host/text.h>

#include <stdio.h>
#include <glib.h>
#include <stdlib.h>

#include <filesystem>

#include "file_managers/gworkspace_bundle.h"
#include "file_managers/managers.h"
#include "file_steps/visible_text.h"
#include "finderkit/plug_in.h"

namespace {

int failed(const std::string& problem) {
    complain_about_usage(problem);
    return exit_failed;
}

// Only an installed Delvio has its icon in the icon theme.
std::string icon_for(const std::string& command) {
    const std::string share = std::filesystem::path(command).parent_path().parent_path() / "share";
    std::error_code error;
    const bool has_icon = std::filesystem::exists(
        share + "/icons/hicolor/scalable/apps/org.delvio.Delvio.svg", error);
    return has_icon ? "org.delvio.Delvio" : "folder";
}

bool find_invocation(Invocation* invocation, std::string* problem) {
    invocation->command = find_command(problem);
    invocation->icon = icon_for(invocation->command);
    return problem->empty() && !invocation->command.empty();
}

// Whether file managers can be told this command.
bool can_be_entered(const Invocation& invocation, std::string* problem) {
    if (!g_utf8_validate(invocation.command.c_str(), -1, nullptr)) {
        // A file of actions with such a name is one that the file manager cannot read.
        *problem = translated("the path of the command is not UTF-8: %s", {invocation.command});
    } else if (invocation.command.find('\n') != std::string::npos) {
        *problem = translated("the path of the command has a line break: %s", {invocation.command});
    }
    return problem->empty();
}

void print_path(const std::string& path) {
    printf("  %s\n", operations::visible_text(path).c_str());
}

// Before the first file is changed, every file is one that can be changed.
std::string refusal(const std::vector<EntryFile>& files) {
    std::string problem;
    for (const EntryFile& file : files) {
        if (state_of(file, &problem) == EntryState::refused) return problem;
    }
    return {};
}

using ChangeFile = bool (*)(const EntryFile& file, std::string* problem);

// Changes the files and collects the paths of those that have changed; the problem if there is one.
std::string change_all(const std::vector<EntryFile>& files, ChangeFile change,
                       std::vector<std::string>* changed) {
    std::string problem = change == put_in ? refusal(files) : "";
    for (const EntryFile& file : files) {
        if (!problem.empty()) break;
        if (change(file, &problem)) changed->push_back(file.path);
    }
    return problem;
}

int install(const FileManager& manager, const std::vector<EntryFile>& files) {
    std::vector<std::string> changed;
    const std::string problem = change_all(files, put_in, &changed);
    if (!problem.empty()) return failed(problem);
    if (changed.empty()) {
        puts(translated("%s has Delvio already:", {manager.title}).c_str());
        for (const EntryFile& file : files) print_path(file.path);
        return exit_done;
    }
    puts(translated(manager.hint, {manager.title}).c_str());
    for (const std::string& path : changed) print_path(path);
    if (!is_found(manager)) puts(translated("%s itself was not found.", {manager.title}).c_str());
    return exit_done;
}

int uninstall(const FileManager& manager, const std::vector<EntryFile>& files) {
    // The last file goes first, as the folders were made for the first one.
    std::vector<std::string> changed;
    const std::string problem = change_all({files.rbegin(), files.rend()}, take_out, &changed);
    if (!problem.empty()) return failed(problem);
    if (changed.empty()) {
        puts(translated("%s does not have Delvio: nothing to do.", {manager.title}).c_str());
        return exit_done;
    }
    puts(translated("%s no longer has Delvio; removed from:", {manager.title}).c_str());
    for (const std::string& path : changed) print_path(path);
    return exit_done;
}

// The state of several files that belong together: that of the one that lacks most.
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

const char* text_of(EntryState state) {
    switch (state) {
        case EntryState::absent:
            return "without Delvio";
        case EntryState::present:
            return "with Delvio";
        case EntryState::other:
            return "with another Delvio; install puts this one in its place";
        case EntryState::refused:
            break;
    }
    return "";
}

void list(const Invocation& invocation) {
    for (const FileManager& manager : file_managers()) {
        std::string problem;
        const EntryState state = state_of(manager, invocation, &problem);
        const std::string text = state == EntryState::refused ? operations::visible_text(problem)
                                                              : std::string(text_of(state));
        printf("%-12s %-10s %s\n", manager.name, is_found(manager) ? "found" : "not found",
               text.c_str());
    }
}

}  // namespace

int run_install_command(const InstallRequest& request) {
    Invocation invocation;
    std::string problem;
    if (!find_invocation(&invocation, &problem)) return failed(problem);
    if (request.list) {
        list(invocation);
        return exit_done;
    }
    const FileManager* manager = find_file_manager(request.program);
    if (!manager)
        return failed(translated("there is no way into the file manager %s", {request.program}));
    if (!manager->files) return change_gworkspace_bundles(request.remove);
    const std::vector<EntryFile> files = manager->files(invocation);
    if (request.remove) return uninstall(*manager, files);
    return can_be_entered(invocation, &problem) ? install(*manager, files) : failed(problem);
}
