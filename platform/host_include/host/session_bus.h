// The desktop's session bus, which may be anybody's program: one that takes a connection and never
// answers must hold nobody. Not a Mac interface. Any thread.
#pragma once

#include <host/glib_owners.h>

#include <string>

// GIO's.
typedef struct _GDBusConnection GDBusConnection;
typedef struct _GAppLaunchContext GAppLaunchContext;

namespace files {

// How long the bus itself may take to answer, in milliseconds. What its services take is theirs.
inline constexpr int bus_patience = 500;

// The connection of this process; null where there is no bus (none is
// started), and where it does not answer. It is asked each time; one that has failed is left alone
// for a while.
ObjectOwner<GDBusConnection> session_bus();

// Sends what is still on its way, if anything has asked for the bus at all.
void flush_session_bus();

// For calls into GIO that look for the bus by themselves and would wait for ever: while one lives
// they find none, unless it answers.
class PatientBus {
  public:
    PatientBus();
    ~PatientBus();
    PatientBus(const PatientBus&) = delete;
    PatientBus& operator=(const PatientBus&) = delete;

    // Programs that are started meanwhile have the bus of the user's.
    void pass_on(GAppLaunchContext* context) const;

  private:
    const ObjectOwner<GDBusConnection> connection_;  // GIO finds it, too
    bool is_hidden_ = false, was_set_ = false;
    std::string address_;
};

}  // namespace files
