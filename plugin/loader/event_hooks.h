// Hooks that print every event, for debugging. Present, but not installed.
#pragma once

#include <AppKit/AppKit.h>

@interface NSWindow (DVDelvioAdditions)
- (NSEvent*)dvNextEventMatchingMask:(NSUInteger)mask;
- (NSEvent*)dvNextEventMatchingMask:(NSUInteger)mask
                          untilDate:(NSDate*)date
                             inMode:(NSString*)mode
                            dequeue:(BOOL)dequeue;
@end

@interface NSApplication (EDNSApplication)
- (void)dvSendEvent:(NSEvent*)event;
@end
