// Icons in GWorkspace's process. Main thread.
#pragma once

// From now on GWorkspace's windows keep GNUstep's icons, even if menus show other icons.
void keep_gworkspace_icons();
