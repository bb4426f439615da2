#include <host/text.h>

#include <host/glib_owners.h>

#include <algorithm>
#include <initializer_list>

#include "finderkit/desktop_managers.h"

namespace {

// Long enough for the file manager to start.
constexpr int milliseconds_to_answer = 30000;
// A file manager with nothing to do exits, and requests that arrive while it exits are lost.
constexpr int times_to_ask = 3;
constexpr int looks_until_gone = 100, microseconds_between_looks = 20000;

std::string uri_of(const std::string& path) {
    return files::taken_text(g_filename_to_uri(path.c_str(), nullptr, nullptr));
}

GVariant* uris_of(const std::vector<std::string>& paths) {
    GVariantBuilder uris;
    g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
    for (const std::string& path : paths) g_variant_builder_add(&uris, "s", uri_of(path).c_str());
    return g_variant_builder_end(&uris);
}

files::VariantOwner ask_bus(GDBusConnection* bus, const char* method, GVariant* arguments,
                            GError** error) {
    return files::VariantOwner(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, milliseconds_to_answer, nullptr, error));
}

// The unique name of the service's connection.
std::string connection_of(GDBusConnection* bus, const char* service, GError** error) {
    const files::VariantOwner owner =
        ask_bus(bus, "GetNameOwner", g_variant_new("(s)", service), error);
    const char* name = "";
    if (owner) g_variant_get(owner.get(), "(&s)", &name);
    return name;
}

std::string connect(GDBusConnection* bus, const char* service, GError** error) {
    const std::string running = connection_of(bus, service, nullptr);
    if (!running.empty()) return running;
    const files::VariantOwner started =
        ask_bus(bus, "StartServiceByName", g_variant_new("(su)", service, 0u), error);
    return started ? connection_of(bus, service, error) : "";
}

bool is_connected(GDBusConnection* bus, const std::string& connection) {
    const files::VariantOwner answer =
        ask_bus(bus, "NameHasOwner", g_variant_new("(s)", connection.c_str()), nullptr);
    gboolean is = FALSE;
    if (answer) g_variant_get(answer.get(), "(b)", &is);
    return is;
}

bool ends_soon(GDBusConnection* bus, const std::string& connection) {
    for (int look = 0; look < looks_until_gone; look++) {
        if (!is_connected(bus, connection)) return true;
        g_usleep(microseconds_between_looks);
    }
    return false;
}

bool is_one_of(const GError* error, std::initializer_list<GDBusError> codes) {
    return std::any_of(codes.begin(), codes.end(), [error](GDBusError code) {
        return g_error_matches(error, G_DBUS_ERROR, code);
    });
}

// Whether the error means that nobody got the question.
bool is_absence(const GError* error) {
    return is_one_of(error, {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                             G_DBUS_ERROR_UNKNOWN_METHOD, G_DBUS_ERROR_UNKNOWN_INTERFACE,
                             G_DBUS_ERROR_UNKNOWN_OBJECT, G_DBUS_ERROR_SPAWN_EXEC_FAILED,
                             G_DBUS_ERROR_SPAWN_FORK_FAILED, G_DBUS_ERROR_SPAWN_CHILD_EXITED,
                             G_DBUS_ERROR_SPAWN_CHILD_SIGNALED, G_DBUS_ERROR_SPAWN_FAILED,
                             G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND});
}

// Whether the manager was about to exit when the question came. A manager that accepts a request
// answers at once, so no request is carried out twice.
bool was_ending(GDBusConnection* bus, const std::string& connection, const GError* error) {
    if (connection.empty()) return is_one_of(error, {G_DBUS_ERROR_NAME_HAS_NO_OWNER});
    const bool is_unheard = is_absence(error) || is_one_of(error, {G_DBUS_ERROR_NO_REPLY});
    return is_unheard && ends_soon(bus, connection);
}

bool takes(GDBusConnection* bus, const std::string& connection, const DesktopManager& manager,
           const DesktopManager::Method& method, const operations::Request& request,
           GError** error) {
    const files::VariantOwner answer(g_dbus_connection_call_sync(
        bus, connection.c_str(), manager.object, method.interface, method.name,
        manager.arguments(request.kind, uris_of(request.sources),
                          uri_of(request.destination).c_str()),
        nullptr, G_DBUS_CALL_FLAGS_NONE, milliseconds_to_answer, nullptr, error));
    return answer != nullptr;
}

}  // namespace

Handover ask_manager(GDBusConnection* bus, const DesktopManager& manager,
                     const operations::Request& request, std::string* reason) {
    const auto* method =
        std::find_if(std::begin(manager.methods), std::end(manager.methods),
                     [&](const auto& one) { return one.name && one.kind == request.kind; });
    if (method == std::end(manager.methods)) return Handover::absent;
    files::ErrorPlace error;
    for (int time = 0; time < times_to_ask; time++) {
        const std::string connection = connect(bus, manager.service, error.place());
        if (!connection.empty() &&
            takes(bus, connection, manager, *method, request, error.place())) {
            return Handover::taken;
        }
        if (!was_ending(bus, connection, error.get())) break;
    }
    if (is_absence(error.get())) return Handover::absent;
    g_dbus_error_strip_remote_error(error.get());
    *reason = translated("the file manager (%s) did not take it: %s",
                         {manager.service, error.get()->message});
    return Handover::refused;
}
