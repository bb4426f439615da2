// The replacement for the pasteboard's writing method. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSPasteboard (DVDelvioAdditions)
// Reads the selection from the objects that the host writes.
- (BOOL)dvWriteObjects:(NSArray*)objects;
@end
