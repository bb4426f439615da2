// The desktop's session bus.
#pragma once

#include <gio/gio.h>

// A connection, which the caller owns; null where there is no bus, or none that
// answers. None is started. Any thread.
GDBusConnection* ConnectToSessionBus();
