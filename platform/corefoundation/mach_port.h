// What stands behind a CFMachPortRef: a place from which the thread's run loop hears of something.
#pragma once

#import <Foundation/Foundation.h>

// Called on the thread of the run loop when there is something to read.
typedef void (*mach_port_handler_t)(void* info);

@interface MachPort : NSObject {
  @private
    int _descriptor;
    mach_port_handler_t _handler;
    void* _info;
    NSMutableSet* _modes;
    NSRunLoop* _loop;  // retained from the first mode on
    BOOL _invalid;
}
// `descriptor` belongs to the maker; -1 for a port whose maker brings what it has by itself.
- (instancetype)initWithDescriptor:(int)descriptor
                           handler:(mach_port_handler_t)handler
                              info:(void*)info;
// From now on the current run loop looks at the port while it runs in `mode`.
- (void)serveInMode:(NSString*)mode;
// Whether a run loop looks at the port in `mode`.
- (BOOL)isServedInMode:(NSString*)mode;
// The port is silent from now on. On the thread of its run loop.
- (void)invalidate;
- (BOOL)isValid;
@end

// A mode has become a common one: the ports of this thread that were added for the common modes are
// served there too.
void serve_common_ports_in_mode(NSString* mode);
