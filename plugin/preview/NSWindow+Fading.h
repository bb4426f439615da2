// Windows that fade in and out. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSWindow (DVWindowAdditions)
// Orders the window in and fades it in.
- (void)dvOrderFront:(id)sender;
// Fades the window out. It is ordered out one second later, even if it is shown again before that.
- (void)dvOrderOut:(id)sender;
@end
