#include "appkit/open_file.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

namespace {

template <typename Object>
struct unref_t {
    void operator()(Object* object) const { g_object_unref(object); }
};
template <typename Object>
using object_t = std::unique_ptr<Object, unref_t<Object>>;

struct g_free_t {
    void operator()(char* text) const { g_free(text); }
};
using text_t = std::unique_ptr<char, g_free_t>;

// In the child: only what is safe between fork and exec. `folder` may be null.
void leave_us(void* folder) {
    setsid();
    if (folder && chdir(static_cast<const char*>(folder)) != 0) return;
}

std::string content_type(GFile* file) {
    const object_t<GFileInfo> info{g_file_query_info(file, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                     G_FILE_QUERY_INFO_NONE, nullptr, nullptr)};
    const char* type = info ? g_file_info_get_content_type(info.get()) : nullptr;
    return type ? type : "";
}

bool is_application_entry(const std::string& type) {
    const text_t entry{g_content_type_from_mime_type("application/x-desktop")};
    return entry && g_content_type_is_a(type.c_str(), entry.get());
}

// A message to a program that the session bus starts is still on its way when the call returns, and
// we may be about to exit.
void send_bus_messages(GDesktopAppInfo* program) {
    if (!g_desktop_app_info_get_boolean(program, "DBusActivatable")) return;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!bus) return;
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    g_object_unref(bus);
}

bool launch(GDesktopAppInfo* program, const char* uri) {
    GList* uris = uri ? g_list_append(nullptr, const_cast<char*>(uri)) : nullptr;
    const object_t<GAppLaunchContext> context{g_app_launch_context_new()};
    // An entry may name a folder of its own to start from.
    const text_t own_folder{g_desktop_app_info_get_string(program, G_KEY_FILE_DESKTOP_KEY_PATH)};
    const bool has_folder = own_folder && *own_folder;
    void* folder = has_folder ? nullptr : const_cast<char*>(g_get_home_dir());
    const bool started =
        g_desktop_app_info_launch_uris_as_manager(program, uris, context.get(), G_SPAWN_SEARCH_PATH,
                                                  leave_us, folder, nullptr, nullptr, nullptr);
    g_list_free(uris);
    if (started) send_bus_messages(program);
    return started;
}

bool launch_for_type(const std::string& type, const char* uri) {
    const object_t<GAppInfo> chosen{g_app_info_get_default_for_type(type.c_str(), FALSE)};
    if (chosen && G_IS_DESKTOP_APP_INFO(chosen.get()) &&
        launch(G_DESKTOP_APP_INFO(chosen.get()), uri)) {
        return true;
    }
    // The default may need what is not here, a terminal for one: the next that starts will do.
    GList* programs = g_app_info_get_all_for_type(type.c_str());
    bool started = false;
    for (GList* i = programs; i && !started; i = i->next) {
        started = G_IS_DESKTOP_APP_INFO(i->data) && launch(G_DESKTOP_APP_INFO(i->data), uri);
    }
    g_list_free_full(programs, g_object_unref);
    return started;
}

}  // namespace

bool open_with_default_program(const std::string& path) {
    struct stat entry;
    if (stat(path.c_str(), &entry) != 0) return false;
    const object_t<GFile> file{g_file_new_for_path(path.c_str())};
    const std::string type = content_type(file.get());
    if (type.empty()) return false;
    if (S_ISREG(entry.st_mode) && is_application_entry(type)) {
        const object_t<GDesktopAppInfo> program{g_desktop_app_info_new_from_filename(path.c_str())};
        if (program) return launch(program.get(), nullptr);
    }
    const text_t uri{g_file_get_uri(file.get())};
    return launch_for_type(type, uri.get());
}

bool start_program(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> command{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        command.push_back(const_cast<char*>(argument.c_str()));
    }
    command.push_back(nullptr);
    return g_spawn_async(g_get_home_dir(), command.data(), nullptr, G_SPAWN_DEFAULT, leave_us,
                         nullptr, nullptr, nullptr);
}
