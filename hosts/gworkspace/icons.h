// Icons in GWorkspace's process. Main thread.
#pragma once

// From now on GWorkspace's windows go on with GNUstep's icons, whatever menus show.
void KeepGWorkspaceIcons();
