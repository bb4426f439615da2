#include "finderkit/session_bus.h"

#include <Carbon/SessionBus.h>

GDBusConnection* ConnectToSessionBus() { return files::session_bus(); }
