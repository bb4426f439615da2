// Right-click and Control-click in GWorkspace's windows. Main thread.
#pragma once

// From now on a press on files, or on the ground of a view of files, pops their menu up. All other
// presses take their usual way.
void TakeMenuPresses();
