#include "offers/notification.h"

#include <host/glib_owners.h>

#include "finderkit/session_bus.h"

namespace {

constexpr int milliseconds_to_show = 5000;  // the service may have to start
constexpr int as_long_as_usual = -1;
constexpr int milliseconds_of_button = 10000;  // time to read it and to reach it

files::VariantOwner call(GDBusConnection* bus, const char* method, GVariant* arguments) {
    return files::VariantOwner(g_dbus_connection_call_sync(
        bus, notifications_name, notifications_object, notifications_name, method, arguments,
        nullptr, G_DBUS_CALL_FLAGS_NONE, milliseconds_to_show, nullptr, nullptr));
}

struct Abilities {
    bool actions = false, markup = false;
};

bool ask_for_abilities(GDBusConnection* bus, Abilities* abilities) {
    const files::VariantOwner answer = call(bus, "GetCapabilities", nullptr);
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(as)"))) return false;
    GVariantIter* names = nullptr;
    g_variant_get(answer.get(), "(as)", &names);
    const char* name = nullptr;
    while (g_variant_iter_next(names, "&s", &name)) {
        if (g_str_equal(name, "actions")) abilities->actions = true;
        if (g_str_equal(name, "body-markup")) abilities->markup = true;
    }
    g_variant_iter_free(names);
    return true;
}

}  // namespace

uint32_t show_notification(GDBusConnection* bus, const Notification& notification) {
    Abilities abilities;
    if (!ask_for_abilities(bus, &abilities)) return 0;
    const bool has_button = !notification.undo_title.empty();
    if (has_button && !abilities.actions) return 0;
    const std::string body =
        abilities.markup ? files::taken_text(g_markup_escape_text(notification.body.c_str(), -1))
                         : notification.body;
    GVariantBuilder actions, hints;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    if (has_button) {
        g_variant_builder_add(&actions, "s", undo_action);
        g_variant_builder_add(&actions, "s", notification.undo_title.c_str());
    }
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry",
                          g_variant_new_string("org.delvio.Delvio"));
    // The offer is no longer of use when it has gone from the screen.
    if (has_button) g_variant_builder_add(&hints, "{sv}", "transient", g_variant_new_boolean(TRUE));
    const files::VariantOwner answer =
        call(bus, "Notify",
             g_variant_new("(susssasa{sv}i)", "Delvio", 0u, "org.delvio.Delvio",
                           notification.summary.c_str(), body.c_str(), &actions, &hints,
                           has_button ? milliseconds_of_button : as_long_as_usual));
    uint32_t number = 0;
    if (answer && g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(u)"))) {
        g_variant_get(answer.get(), "(u)", &number);
    }
    return number;
}

void close_notification(GDBusConnection* bus, uint32_t number) {
    call(bus, "CloseNotification", g_variant_new("(u)", number));
}

bool show_notification(const Notification& notification) {
    const files::ObjectOwner<GDBusConnection> bus = connect_to_session_bus();
    return bus && show_notification(bus.get(), notification) != 0;
}
