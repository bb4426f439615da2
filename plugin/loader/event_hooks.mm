#include "loader/event_hooks.h"

#include <stdio.h>

@implementation NSWindow (DVDelvioAdditions)

- (NSEvent*)dvNextEventMatchingMask:(NSUInteger)mask {
    NSEvent* event = [self dvNextEventMatchingMask:mask];
    printf("Win Event: %s\n", [[event description] UTF8String]);
    return event;
}

- (NSEvent*)dvNextEventMatchingMask:(NSUInteger)mask
                          untilDate:(NSDate*)date
                             inMode:(NSString*)mode
                            dequeue:(BOOL)dequeue {
    NSEvent* event = [self dvNextEventMatchingMask:mask untilDate:date inMode:mode dequeue:dequeue];
    printf("Event: %s\n", [[event description] UTF8String]);
    return event;
}

@end

@implementation NSApplication (EDNSApplication)

- (void)dvSendEvent:(NSEvent*)event {
    printf("Event: %s\n", [[event description] UTF8String]);
    [self dvSendEvent:event];
}

@end
