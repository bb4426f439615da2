// The host's side of the Process and Apple Event Managers. Not a Mac interface: there, the
// signature stands in the program's bundle.
#pragma once

#include <Carbon/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

// Declares the four-character signature of this process, for example 'MACS' for a file manager
// that answers the Finder's Apple Events. 0 takes it back.
void DeclareProcessSignature(OSType signature);

// Whether events that this process has sent still wait for its run loop. Main thread.
Boolean AppleEventsAreWaiting(void);

#ifdef __cplusplus
}
#endif
