// A drag that began in the menu and outlives it. Main thread.
#pragma once

// When a button is still held after the menu has closed, its press may be the start of a drag:
// returns when the button is let go and who got the drop has it, or when a signal ends the command.
void FinishDrags();
