// The desktop's session bus.
#pragma once

#include <host/glib_owners.h>
#include <gio/gio.h>

// A connection; null where there is no bus, or none that answers. None is started. Any thread.
files::ObjectOwner<GDBusConnection> ConnectToSessionBus();
