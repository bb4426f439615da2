#include "finderkit/session_bus.h"

#include <host/glib_owners.h>
#include <host/session_bus.h>

files::ObjectOwner<GDBusConnection> connect_to_session_bus() { return files::session_bus(); }
