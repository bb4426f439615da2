#include "finderkit/session_bus.h"

// To ask GIO for a bus that is not there would start one.
GDBusConnection* ConnectToSessionBus() {
    const char* address = g_getenv("DBUS_SESSION_BUS_ADDRESS");
    g_autofree char* socket = g_build_filename(g_get_user_runtime_dir(), "bus", nullptr);
    if (!(address && *address) && !g_file_test(socket, G_FILE_TEST_EXISTS)) return nullptr;
    return g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
}
