#include "desktop/settings_portal.h"

#include <gio/gio.h>
#include <host/glib_owners.h>
#include <host/session_bus.h>

namespace {

constexpr int milliseconds_to_answer = 100;
constexpr const char* looks = "org.freedesktop.appearance";
constexpr guint32 dark = 1, more_contrast = 1;

bool is(GVariant* values, const char* key, guint32 wanted) {
    guint32 value = 0;
    return g_variant_lookup(values, key, "u", &value) && value == wanted;
}

}  // namespace

PortalSettings portal_settings() {
    const files::ObjectOwner<GDBusConnection> bus = files::session_bus();
    if (!bus) return {};
    const char* const groups[] = {looks, nullptr};
    const files::VariantOwner answer(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
        "org.freedesktop.portal.Settings", "ReadAll", g_variant_new("(^as)", groups),
        G_VARIANT_TYPE("(a{sa{sv}})"), G_DBUS_CALL_FLAGS_NO_AUTO_START, milliseconds_to_answer,
        nullptr, nullptr));
    if (!answer) return {};
    const files::VariantOwner all(g_variant_get_child_value(answer.get(), 0));
    const files::VariantOwner values(
        g_variant_lookup_value(all.get(), looks, G_VARIANT_TYPE_VARDICT));
    if (!values) return {};
    return {true, is(values.get(), "color-scheme", dark),
            is(values.get(), "contrast", more_contrast)};
}
