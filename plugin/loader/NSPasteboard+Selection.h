// What runs in place of the pasteboard's writing. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSPasteboard (DVDelvioAdditions)
// Learns the selection from what the host writes.
- (BOOL)dvWriteObjects:(NSArray*)objects;
@end
