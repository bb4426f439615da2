// The application's wait for events. Main thread.
#pragma once

// Ends the wait of a loop that is asleep in the event queue: it gets an event that says nothing.
void wake_event_loop();
