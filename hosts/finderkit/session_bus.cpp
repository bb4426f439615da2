#include "finderkit/session_bus.h"

#include <host/glib_owners.h>
#include <host/session_bus.h>

files::ObjectOwner<GDBusConnection> ConnectToSessionBus() { return files::session_bus(); }
