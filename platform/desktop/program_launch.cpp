#include "desktop/program_launch.h"

#include <host/text.h>
#include <host/glib_owners.h>
#include <host/opening_files.h>
#include <host/session_bus.h>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <unistd.h>

#include <map>
#include <optional>

namespace {

// The environment variables that started programs find changed; those without a value are removed.
std::map<std::string, std::optional<std::string>>& changed_variables() {
    static auto& variables = *new std::map<std::string, std::optional<std::string>>;
    return variables;
}

files::ObjectOwner<GAppLaunchContext> launch_context() {
    files::ObjectOwner<GAppLaunchContext> context(g_app_launch_context_new());
    for (const auto& [name, value] : changed_variables()) {
        if (value) {
            g_app_launch_context_setenv(context.get(), name.c_str(), value->c_str());
        } else {
            g_app_launch_context_unsetenv(context.get(), name.c_str());
        }
    }
    return context;
}

// Runs in the child: only calls that are safe between fork and exec. `folder` may be null.
void leave_us(void* folder) {
    setsid();
    if (folder && chdir(static_cast<const char*>(folder)) != 0) return;
}

Start result_of(bool started, GError* error, std::string* reason) {
    const files::ErrorOwner owner(error);
    if (started) return Start::done;
    *reason = error ? error->message : translated("it does not say why");
    if (g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT)) return Start::no_program;
    const bool refused = g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_ACCES) ||
                         g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_PERM);
    return refused ? Start::not_permitted : Start::failed;
}

void release_texts(GList* texts) { g_list_free_full(texts, g_free); }
using AddressesOwner = std::unique_ptr<GList, files::Release<release_texts>>;

// Addresses can carry any byte.
AddressesOwner addresses_of(const std::vector<std::string>& documents) {
    GList* addresses = nullptr;
    for (const std::string& document : documents) {
        addresses =
            g_list_prepend(addresses, g_filename_to_uri(document.c_str(), nullptr, nullptr));
    }
    return AddressesOwner(g_list_reverse(addresses));
}

}  // namespace

Start start_entry(GDesktopAppInfo* entry, const std::vector<std::string>& documents,
                  std::string* reason) {
    const AddressesOwner addresses = addresses_of(documents);
    const files::ObjectOwner<GAppLaunchContext> context = launch_context();
    const files::PatientBus bus;
    bus.pass_on(context.get());
    // An entry may name a folder of its own to start from.
    const files::TextOwner own_folder(
        g_desktop_app_info_get_string(entry, G_KEY_FILE_DESKTOP_KEY_PATH));
    const bool has_folder = own_folder && *own_folder;
    void* folder = has_folder ? nullptr : const_cast<char*>(g_get_home_dir());
    GError* error = nullptr;
    const bool started = g_desktop_app_info_launch_uris_as_manager(
        entry, addresses.get(), context.get(), G_SPAWN_SEARCH_PATH, leave_us, folder, nullptr,
        nullptr, &error);
    // The message to a program that the bus starts may still be on its way when we exit, so it is
    // sent now.
    if (started && g_desktop_app_info_get_boolean(entry, "DBusActivatable")) {
        files::flush_session_bus();
    }
    return result_of(started, error, reason);
}

Start start_entry_file(const std::string& path, const std::vector<std::string>& documents,
                       std::string* reason) {
    const files::ObjectOwner<GDesktopAppInfo> entry(
        g_desktop_app_info_new_from_filename(path.c_str()));
    if (entry) return start_entry(entry.get(), documents, reason);
    *reason = translated("its program is not installed");
    return Start::not_installed;
}

Start start_program(const std::string& program, const std::vector<std::string>& arguments,
                    std::string* reason) {
    std::vector<char*> command{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        command.push_back(const_cast<char*>(argument.c_str()));
    }
    command.push_back(nullptr);
    GError* error = nullptr;
    const files::ObjectOwner<GAppLaunchContext> context = launch_context();
    const files::PatientBus bus;
    bus.pass_on(context.get());
    const files::TextsOwner environment(g_app_launch_context_get_environment(context.get()));
    const bool started =
        g_spawn_async(nullptr, command.data(), environment.get(), G_SPAWN_DEFAULT, leave_us,
                      const_cast<char*>(g_get_home_dir()), nullptr, &error);
    return result_of(started, error, reason);
}

void set_variable_of_started_programs(const char* name, const char* value) {
    changed_variables()[name] = value ? std::optional<std::string>(value) : std::nullopt;
}
