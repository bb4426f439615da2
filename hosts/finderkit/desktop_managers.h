// The file managers that carry out operations over D-Bus, and the call for each. Any thread.
#pragma once

#include <gio/gio.h>

#include <string>
#include <vector>

#include "file_steps/request.h"

struct DesktopManager {
    const char* name;  // as its users know it
    const char* service;
    const char* object;
    const char* entry;  // its desktop entry
    struct Method {
        operations::Kind kind;
        const char* interface;
        const char* name;
    } methods[3];  // the ones that it lacks are left out
    // A floating value. The sources are URIs.
    GVariant* (*arguments)(operations::Kind kind, GVariant* sources, const char* destination);
};

// The running file managers, then those that the bus can start; in each group the user's own first.
std::vector<const DesktopManager*> managers_on_bus(GDBusConnection* bus);

enum class Handover { taken, absent, refused };

// Asks the manager for the operation and waits for its answer; a manager that exits at that moment
// is started again. `absent`: the manager is not there, or has no such method. `refused`: *reason
// says why, in one line.
Handover ask_manager(GDBusConnection* bus, const DesktopManager& manager,
                     const operations::Request& request, std::string* reason);
