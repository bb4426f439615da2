#include "finderkit/desktop_managers.h"

#include <algorithm>

namespace {

using operations::Kind;

// Time enough for it to start.
constexpr int milliseconds_to_answer = 30000;

const char* display() {
    const char* name = g_getenv("DISPLAY");
    return name ? name : "";
}

GVariant* thunar_arguments(Kind kind, GVariant* sources, const char* destination) {
    if (kind == Kind::Trash) return g_variant_new("(@asss)", sources, display(), "");
    return g_variant_new("(s@assss)", "/", sources, destination, display(), "");
}

GVariant* nautilus_arguments(Kind kind, GVariant* sources, const char* destination) {
    GVariant* platform = g_variant_new("a{sv}", nullptr);
    if (kind == Kind::Trash) return g_variant_new("(@as@a{sv})", sources, platform);
    return g_variant_new("(@ass@a{sv})", sources, destination, platform);
}

const DesktopManager managers[] = {
    {"org.xfce.FileManager",
     "/org/xfce/FileManager",
     "thunar.desktop",
     {{Kind::Move, "org.xfce.FileManager", "MoveInto"},
      {Kind::Copy, "org.xfce.FileManager", "CopyInto"},
      {Kind::Trash, "org.xfce.Trash", "MoveToTrash"}},
     thunar_arguments},
    {"org.gnome.Nautilus",
     "/org/gnome/Nautilus/FileOperations2",
     "org.gnome.Nautilus.desktop",
     {{Kind::Move, "org.gnome.Nautilus.FileOperations2", "MoveURIs"},
      {Kind::Copy, "org.gnome.Nautilus.FileOperations2", "CopyURIs"},
      {Kind::Trash, "org.gnome.Nautilus.FileOperations2", "TrashURIs"}},
     nautilus_arguments},
};

std::vector<std::string> names_from_bus(GDBusConnection* bus, const char* method) {
    std::vector<std::string> names;
    g_autoptr(GVariant) answer = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        nullptr, G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, milliseconds_to_answer, nullptr,
        nullptr);
    if (!answer) return names;
    g_autoptr(GVariantIter) list = nullptr;
    g_variant_get(answer, "(as)", &list);
    const char* name;
    while (g_variant_iter_next(list, "&s", &name)) names.push_back(name);
    return names;
}

bool is_users_own(const DesktopManager* manager) {
    g_autoptr(GAppInfo) own = g_app_info_get_default_for_type("inode/directory", FALSE);
    return own && g_strcmp0(g_app_info_get_id(own), manager->entry) == 0;
}

void add_named(const std::vector<std::string>& names, std::vector<const DesktopManager*>* found) {
    const auto first = static_cast<std::ptrdiff_t>(found->size());
    for (const DesktopManager& manager : managers) {
        const bool named = std::find(names.begin(), names.end(), manager.service) != names.end();
        const bool known = std::find(found->begin(), found->end(), &manager) != found->end();
        if (named && !known) found->push_back(&manager);
    }
    std::stable_partition(found->begin() + first, found->end(), is_users_own);
}

std::string uri_of(const std::string& path) {
    g_autofree char* uri = g_filename_to_uri(path.c_str(), nullptr, nullptr);
    return uri ? uri : "";
}

GVariant* uris_of(const std::vector<std::string>& paths) {
    GVariantBuilder uris;
    g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
    for (const std::string& path : paths) g_variant_builder_add(&uris, "s", uri_of(path).c_str());
    return g_variant_builder_end(&uris);
}

// Nobody has heard the question.
bool is_absence(const GError* error) {
    for (const int code :
         {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER, G_DBUS_ERROR_UNKNOWN_METHOD,
          G_DBUS_ERROR_UNKNOWN_INTERFACE, G_DBUS_ERROR_UNKNOWN_OBJECT,
          G_DBUS_ERROR_SPAWN_EXEC_FAILED, G_DBUS_ERROR_SPAWN_FORK_FAILED,
          G_DBUS_ERROR_SPAWN_CHILD_EXITED, G_DBUS_ERROR_SPAWN_CHILD_SIGNALED,
          G_DBUS_ERROR_SPAWN_FAILED, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND}) {
        if (g_error_matches(error, G_DBUS_ERROR, code)) return true;
    }
    return false;
}

}  // namespace

std::vector<const DesktopManager*> ManagersOnBus(GDBusConnection* bus) {
    std::vector<const DesktopManager*> found;
    for (const char* method : {"ListNames", "ListActivatableNames"}) {
        add_named(names_from_bus(bus, method), &found);
    }
    return found;
}

Handover AskManager(GDBusConnection* bus, const DesktopManager& manager,
                    const operations::Request& request, std::string* reason) {
    const auto* method = std::find_if(std::begin(manager.methods), std::end(manager.methods),
                                      [&](const auto& one) { return one.kind == request.kind; });
    if (method == std::end(manager.methods)) return Handover::absent;
    g_autoptr(GError) error = nullptr;
    g_autoptr(GVariant) answer = g_dbus_connection_call_sync(
        bus, manager.service, manager.object, method->interface, method->name,
        manager.arguments(request.kind, uris_of(request.sources),
                          uri_of(request.destination).c_str()),
        nullptr, G_DBUS_CALL_FLAGS_NONE, milliseconds_to_answer, nullptr, &error);
    if (answer) return Handover::taken;
    if (is_absence(error)) return Handover::absent;
    g_dbus_error_strip_remote_error(error);
    *reason = std::string("the file manager (") + manager.service +
              ") did not take it: " + error->message;
    return Handover::refused;
}
