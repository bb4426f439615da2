// A drag that began in the menu and outlives it. Main thread.
#pragma once

// A mouse button that is still held after the menu has closed may have begun a drag. Returns when
// the button is released and the receiver has the drop, or when a signal ends the command.
void finish_drags();
