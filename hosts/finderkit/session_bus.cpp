#include "finderkit/session_bus.h"

#include <host/session_bus.h>

GDBusConnection* ConnectToSessionBus() { return files::session_bus(); }
