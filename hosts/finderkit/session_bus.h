// The desktop's session bus.
#pragma once

#include <host/glib_owners.h>
#include <gio/gio.h>

// A connection; null when there is no bus, or the bus does not answer. Starts no bus. Any thread.
files::ObjectOwner<GDBusConnection> connect_to_session_bus();
