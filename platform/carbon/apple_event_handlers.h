// The handlers of Apple Events in this process. Main thread.
#pragma once

#include "carbon/apple_event_values.h"

namespace events {

// Calls the handler of an event that has arrived.
void handle(Value event);

}  // namespace events
