#include <CoreFoundation/CoreFoundation.h>

#include "corefoundation/common_modes.h"
#include "corefoundation/mach_port.h"

const CFStringRef kCFRunLoopDefaultMode = (CFStringRef) @"NSDefaultRunLoopMode";
const CFStringRef kCFRunLoopCommonModes = (CFStringRef) @"NSRunLoopCommonModes";

static NSMutableArray* mode_names() {
    static NSMutableArray* names =
        [[NSMutableArray alloc] initWithObjects:NSDefaultRunLoopMode, nil];
    return names;
}

CFRunLoopRef CFRunLoopGetCurrent(void) { return (CFRunLoopRef)[NSRunLoop currentRunLoop]; }

void CFRunLoopAddCommonMode(CFRunLoopRef, CFStringRef mode) {
    if (!mode) return;
    @synchronized(mode_names()) {
        if (![mode_names() containsObject:(NSString*)mode]) {
            [mode_names() addObject:(NSString*)mode];
        }
    }
    serve_common_ports_in_mode((NSString*)mode);
}

NSArray* common_modes(void) {
    @synchronized(mode_names()) {
        return [[mode_names() copy] autorelease];
    }
}
