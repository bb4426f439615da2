#include "desktop/settings_portal.h"

#include <gio/gio.h>
#include <host/glib_owners.h>
#include <host/session_bus.h>

#include <memory>
#include <optional>
#include <string>

namespace {

constexpr int milliseconds_to_answer = 100;
constexpr const char* looks = "org.freedesktop.appearance";
constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* object = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";
constexpr guint32 dark = 1, more_contrast = 1;

bool is(GVariant* values, const char* key, guint32 wanted) {
    guint32 value = 0;
    return g_variant_lookup(values, key, "u", &value) && value == wanted;
}

PortalSettings settings_in(GVariant* answer) {
    const files::VariantOwner all(g_variant_get_child_value(answer, 0));
    const files::VariantOwner values(
        g_variant_lookup_value(all.get(), looks, G_VARIANT_TYPE_VARDICT));
    if (!values) return {};
    return {true, is(values.get(), "color-scheme", dark),
            is(values.get(), "contrast", more_contrast)};
}

// Nothing when the portal is too slow. A portal that does not run has answered nothing.
std::optional<PortalSettings> ask(GDBusConnection* bus) {
    const char* const groups[] = {looks, nullptr};
    GError* error = nullptr;
    const files::VariantOwner answer(g_dbus_connection_call_sync(
        bus, portal, object, interface, "ReadAll", g_variant_new("(^as)", groups),
        G_VARIANT_TYPE("(a{sa{sv}})"), G_DBUS_CALL_FLAGS_NO_AUTO_START, milliseconds_to_answer,
        nullptr, &error));
    if (answer) return settings_in(answer.get());
    const bool is_late = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
    g_error_free(error);
    if (is_late) return {};
    return PortalSettings();
}

// Keeps the portal's answer until a signal says that another one may be true. The signals wait in a
// context of their own until the next look, so that they wake nothing.
class PortalWatch {
  public:
    explicit PortalWatch(files::ObjectOwner<GDBusConnection> bus)
        : bus_(std::move(bus)), context_(g_main_context_new()) {
        g_main_context_push_thread_default(context_);
        subscribe(portal, interface, "SettingChanged", object, looks);
        subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                  "/org/freedesktop/DBus", portal);
        g_main_context_pop_thread_default(context_);
    }
    ~PortalWatch() {
        for (const guint subscription : subscriptions_) {
            g_dbus_connection_signal_unsubscribe(bus_.get(), subscription);
        }
        take_signals();
        g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
        g_main_context_unref(context_);
    }
    PortalWatch(const PortalWatch&) = delete;
    PortalWatch& operator=(const PortalWatch&) = delete;

    bool is_over() const { return g_dbus_connection_is_closed(bus_.get()); }

    PortalSettings settings() {
        take_signals();
        if (!known_) known_ = ask(bus_.get());
        return known_.value_or(PortalSettings());
    }

  private:
    void subscribe(const char* sender, const char* from, const char* signal, const char* path,
                   const char* first_argument) {
        guint& subscription = subscriptions_[subscription_count_++];
        subscription = g_dbus_connection_signal_subscribe(bus_.get(), sender, from, signal, path,
                                                          first_argument, G_DBUS_SIGNAL_FLAGS_NONE,
                                                          &PortalWatch::forget, this, nullptr);
    }
    void take_signals() {
        while (g_main_context_iteration(context_, FALSE)) {
        }
    }
    static void forget(GDBusConnection*, const char*, const char*, const char*, const char*,
                       GVariant*, gpointer self) {
        static_cast<PortalWatch*>(self)->known_.reset();
    }

    const files::ObjectOwner<GDBusConnection> bus_;
    GMainContext* const context_;
    guint subscriptions_[2] = {};
    int subscription_count_ = 0;
    std::optional<PortalSettings> known_;
};

// What this process has to do with the portal of one bus.
struct Acquaintance {
    std::string address;
    bool has_asked = false;
    std::unique_ptr<PortalWatch> watch;
};

PortalSettings ask_once() {
    const files::ObjectOwner<GDBusConnection> bus = files::session_bus();
    return bus ? ask(bus.get()).value_or(PortalSettings()) : PortalSettings();
}

}  // namespace

PortalSettings portal_settings() {
    static Acquaintance& known = *new Acquaintance;
    const char* address = g_getenv("DBUS_SESSION_BUS_ADDRESS");
    if (known.address != (address ? address : "")) known = {address ? address : "", false, nullptr};
    if (!files::has_session_bus()) return {};
    if (!known.has_asked) {
        known.has_asked = true;
        return ask_once();
    }
    if (known.watch && known.watch->is_over()) known.watch.reset();
    if (!known.watch) {
        files::ObjectOwner<GDBusConnection> bus = files::new_session_connection();
        if (!bus) return {};
        known.watch = std::make_unique<PortalWatch>(std::move(bus));
    }
    return known.watch->settings();
}
