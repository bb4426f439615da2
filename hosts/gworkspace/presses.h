// Right-click and Control-click in GWorkspace's windows. Main thread.
#pragma once

// From now on a press on files, or on the background of a view of files, pops up their menu. All
// other presses work as usual.
void take_menu_presses();
