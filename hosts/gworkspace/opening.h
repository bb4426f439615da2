// Opening a file or folder from GWorkspace's process. Main thread.
#pragma once

// From now on the workspace opens folders in GWorkspace's windows and starts what GNUstep has a
// program for as GWorkspace does; all else goes to the desktop's default program as before.
void OpenFilesWithGWorkspace();
