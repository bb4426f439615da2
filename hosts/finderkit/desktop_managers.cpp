#include "finderkit/desktop_managers.h"

#include <host/glib_owners.h>
#include <host/session_bus.h>

#include <algorithm>

namespace {

using operations::Kind;

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
    {"Thunar",
     "org.xfce.FileManager",
     "/org/xfce/FileManager",
     "thunar.desktop",
     {{Kind::Move, "org.xfce.FileManager", "MoveInto"},
      {Kind::Copy, "org.xfce.FileManager", "CopyInto"},
      {Kind::Trash, "org.xfce.Trash", "MoveToTrash"}},
     thunar_arguments},
    {"Nautilus",
     "org.gnome.Nautilus",
     "/org/gnome/Nautilus/FileOperations2",
     "org.gnome.Nautilus.desktop",
     {{Kind::Move, "org.gnome.Nautilus.FileOperations2", "MoveURIs"},
      {Kind::Copy, "org.gnome.Nautilus.FileOperations2", "CopyURIs"},
      {Kind::Trash, "org.gnome.Nautilus.FileOperations2", "TrashURIs"}},
     nautilus_arguments},
};

std::vector<std::string> names_from_bus(GDBusConnection* bus, const char* method) {
    std::vector<std::string> names;
    const files::VariantOwner answer(
        g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", method, nullptr, G_VARIANT_TYPE("(as)"),
                                    G_DBUS_CALL_FLAGS_NONE, files::bus_patience, nullptr, nullptr));
    if (!answer) return names;
    GVariantIter* found = nullptr;
    g_variant_get(answer.get(), "(as)", &found);
    const std::unique_ptr<GVariantIter, files::Release<g_variant_iter_free>> list(found);
    const char* name;
    while (g_variant_iter_next(list.get(), "&s", &name)) names.push_back(name);
    return names;
}

bool is_users_own(const DesktopManager* manager) {
    const files::ObjectOwner<GAppInfo> own(
        g_app_info_get_default_for_type("inode/directory", FALSE));
    return own && g_strcmp0(g_app_info_get_id(own.get()), manager->entry) == 0;
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

}  // namespace

std::vector<const DesktopManager*> managers_on_bus(GDBusConnection* bus) {
    std::vector<const DesktopManager*> found;
    for (const char* method : {"ListNames", "ListActivatableNames"}) {
        add_named(names_from_bus(bus, method), &found);
    }
    return found;
}
