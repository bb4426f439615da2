// The object behind a CFMachPortRef: something that the thread's run loop listens to.
#pragma once

#import <Foundation/Foundation.h>

// Called on the thread of the run loop when there is something to read.
typedef void (*MachPortHandler)(void* info);

@interface MachPort : NSObject {
  @private
    int _descriptor;
    MachPortHandler _handler;
    void* _info;
    NSMutableSet* _modes;
    NSRunLoop* _loop;  // retained from the first mode on
    BOOL _invalid;
}
// `descriptor` belongs to the maker. It is -1 for a port whose maker delivers its news itself.
- (instancetype)initWithDescriptor:(int)descriptor
                           handler:(MachPortHandler)handler
                              info:(void*)info;
// From now on the current run loop watches the port while it runs in `mode`.
- (void)serveInMode:(NSString*)mode;
// Whether a run loop watches the port in `mode`.
- (BOOL)isServedInMode:(NSString*)mode;
// Silences the port from now on. Call this on the thread of its run loop.
- (void)invalidate;
- (BOOL)isValid;
@end

// Call this when a mode has become a common one: the ports that this thread added for the common
// modes are then served in it too.
void serve_common_ports_in_mode(NSString* mode);
