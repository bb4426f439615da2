// Windows that come and go softly. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSWindow (DVWindowAdditions)
// Orders the window in and fades it in.
- (void)dvOrderFront:(id)sender;
// Fades the window out; it is ordered out one second later, whatever happens meanwhile.
- (void)dvOrderOut:(id)sender;
@end
