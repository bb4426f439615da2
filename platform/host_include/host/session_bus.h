// The desktop's session bus. Any program may be the bus, so a bus that takes a connection and never
// answers must not hold up its callers. Not a Mac interface. Any thread.
#pragma once

#include <host/glib_owners.h>

#include <string>

// GIO's.
typedef struct _GDBusConnection GDBusConnection;
typedef struct _GAppLaunchContext GAppLaunchContext;

namespace files {

// How long the bus itself may take to answer, in milliseconds. This does not limit its services.
inline constexpr int bus_patience = 500;

// The connection of this process. Null where there is no bus (none is started), and where the bus
// does not answer. Each call asks the bus; a bus that has failed is left alone for a while.
ObjectOwner<GDBusConnection> session_bus();

// Another connection, for whoever keeps it: GIO hands out a closed one as long as anybody holds it.
// Null as above.
ObjectOwner<GDBusConnection> new_session_connection();

// Whether there seems to be one; it is not asked.
bool has_session_bus();

// Sends all messages that still wait, if the process has used the bus at all.
void flush_session_bus();

// Guards calls into GIO that look for the bus by themselves and would wait for ever: while a
// PatientBus lives they find a bus only if it answers.
class PatientBus {
  public:
    PatientBus();
    ~PatientBus();
    PatientBus(const PatientBus&) = delete;
    PatientBus& operator=(const PatientBus&) = delete;

    // Programs that are started while it lives get the user's bus.
    void pass_on(GAppLaunchContext* context) const;

  private:
    const ObjectOwner<GDBusConnection> connection_;  // GIO finds this connection, too
    bool is_hidden_ = false, was_set_ = false;
    std::string address_;
};

}  // namespace files
