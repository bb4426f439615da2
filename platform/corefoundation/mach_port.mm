#include "corefoundation/mach_port.h"

#include <CoreFoundation/CoreFoundation.h>

#include "corefoundation/common_modes.h"

// The object behind a CFRunLoopSourceRef.
@interface PortSource : NSObject {
  @private
    MachPort* _port;
}
- (instancetype)initWithPort:(MachPort*)port;
- (MachPort*)port;
@end

@implementation PortSource

- (instancetype)initWithPort:(MachPort*)port {
    if ((self = [super init])) _port = [port retain];
    return self;
}

- (void)dealloc {
    [_port release];
    [super dealloc];
}

- (MachPort*)port {
    return _port;
}

@end

@interface MachPort (Watching) <RunLoopEvents>
@end

@implementation MachPort

- (instancetype)initWithDescriptor:(int)descriptor
                           handler:(MachPortHandler)handler
                              info:(void*)info {
    if (!(self = [super init])) return nil;
    _descriptor = descriptor;
    _handler = handler;
    _info = info;
    _modes = [NSMutableSet new];
    return self;
}

- (void)dealloc {
    [self invalidate];
    [_modes release];
    [_loop release];
    [super dealloc];
}

- (void)serveInMode:(NSString*)mode {
    if (_invalid || [_modes containsObject:mode]) return;
    [_modes addObject:mode];
    if (!_loop) _loop = [[NSRunLoop currentRunLoop] retain];
    if (_descriptor < 0) return;
    [_loop addEvent:reinterpret_cast<void*>(intptr_t{_descriptor})
               type:ET_RDESC
            watcher:self
            forMode:mode];
}

- (BOOL)isServedInMode:(NSString*)mode {
    return [_modes containsObject:mode];
}

- (void)invalidate {
    _invalid = YES;
    for (NSString* mode in _descriptor < 0 ? nil : _modes) {
        [_loop removeEvent:reinterpret_cast<void*>(intptr_t{_descriptor})
                      type:ET_RDESC
                   forMode:mode
                       all:YES];
    }
    [_modes removeAllObjects];
}

- (BOOL)isValid {
    return !_invalid;
}

@end

@implementation MachPort (Watching)

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    if (!_invalid && _handler) _handler(_info);
}

@end

// The ports of this thread that were added for the common modes.
static NSMutableArray* common_ports() {
    NSMutableDictionary* storage = [[NSThread currentThread] threadDictionary];
    NSMutableArray* ports = [storage objectForKey:@"CommonModePorts"];
    if (!ports) {
        ports = [NSMutableArray array];
        [storage setObject:ports forKey:@"CommonModePorts"];
    }
    return ports;
}

void serve_common_ports_in_mode(NSString* mode) {
    for (MachPort* port in common_ports()) [port serveInMode:mode];
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef port, CFIndex) {
    if (!port || !CFMachPortIsValid(port)) return nullptr;
    return (CFRunLoopSourceRef)[[PortSource alloc] initWithPort:(MachPort*)port];
}

void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef source, CFStringRef mode) {
    MachPort* port = [(PortSource*)source port];
    if (!port || !mode) return;
    if (![(NSString*)mode isEqualToString:(NSString*)kCFRunLoopCommonModes]) {
        [port serveInMode:(NSString*)mode];
        return;
    }
    if ([common_ports() indexOfObjectIdenticalTo:port] == NSNotFound) {
        [common_ports() addObject:port];
    }
    for (NSString* name in common_modes()) [port serveInMode:name];
}

void CFMachPortInvalidate(CFMachPortRef port) {
    MachPort* invalid = (MachPort*)port;
    [common_ports() removeObjectIdenticalTo:invalid];
    [invalid invalidate];
}

Boolean CFMachPortIsValid(CFMachPortRef port) { return port && [(MachPort*)port isValid]; }
