// GWorkspace's desktop in the stacking order. Main thread.
#pragma once

// From now on the window of GWorkspace's desktop tells the window manager what it is before it
// appears. GWorkspace tells it just afterwards. A window manager that looks in between (openbox
// looks once) takes the desktop for a window of full-screen size and puts it above others, such as
// an alert of ours.
void keep_desktop_below();
