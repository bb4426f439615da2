// Opening a file or folder from GWorkspace's process. Main thread.
#pragma once

// From now on the workspace opens folders in GWorkspace's windows, and starts GNUstep's programs,
// also for their files, as GWorkspace does. All other files still go to the desktop's default
// program. "Open with GWorkspace" starts no second GWorkspace.
void open_files_with_gworkspace();
