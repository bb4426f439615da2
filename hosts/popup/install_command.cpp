#include "popup/install_command.h"

#include <host/text.h>

#include <stdio.h>

#include "file_managers/gworkspace_bundle.h"
#include "file_managers/manager_entries.h"
#include "file_steps/visible_text.h"

namespace {

int failed(const std::string& problem) {
    complain_about_usage(problem);
    return exit_failed;
}

void print_path(const std::string& path) {
    printf("  %s\n", operations::visible_text(path).c_str());
}

int install(const FileManager& manager, const Invocation& invocation) {
    const EntryChange change = put_in(manager, invocation);
    if (!change.problem.empty()) return failed(change.problem);
    if (change.paths.empty()) {
        puts(translated("%s has Delvio already:", {manager.title}).c_str());
        for (const EntryFile& file : manager.files(invocation)) print_path(file.path);
        return exit_done;
    }
    puts(translated(manager.hint, {manager.title}).c_str());
    for (const std::string& path : change.paths) print_path(path);
    if (!is_found(manager)) puts(translated("%s itself was not found.", {manager.title}).c_str());
    return exit_done;
}

int uninstall(const FileManager& manager, const Invocation& invocation) {
    const EntryChange change = take_out(manager, invocation);
    if (!change.problem.empty()) return failed(change.problem);
    if (change.paths.empty()) {
        puts(translated("%s does not have Delvio: nothing to do.", {manager.title}).c_str());
        return exit_done;
    }
    puts(translated("%s no longer has Delvio; removed from:", {manager.title}).c_str());
    for (const std::string& path : change.paths) print_path(path);
    return exit_done;
}

const char* text_of(const BundleChange& change, bool is_removal) {
    if (is_removal)
        return translated("GWorkspace no longer loads Delvio from its next start on; removed:");
    return change.has_changed ? translated("GWorkspace loads Delvio from its next start on:")
                              : translated("GWorkspace has Delvio already:");
}

int change_bundles(bool is_removal) {
    const BundleChange change = change_gworkspace_bundles(is_removal);
    if (!change.problem.empty()) return failed(change.problem);
    if (is_removal && !change.has_changed) {
        puts(translated("%s does not have Delvio: nothing to do.", {"GWorkspace"}).c_str());
        return exit_done;
    }
    puts(text_of(change, is_removal));
    print_path(change.path);
    printf("  %s\n", change.place.c_str());
    return exit_done;
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
    if (!manager->files) return change_bundles(request.remove);
    return request.remove ? uninstall(*manager, invocation) : install(*manager, invocation);
}
