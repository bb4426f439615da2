#include "corefoundation/descriptor_watch.h"

#include <AppKit/AppKit.h>

@interface DescriptorWatcher : NSObject <RunLoopEvents> {
  @private
    int _descriptor;
    std::function<void()>* _readable;
}
- (instancetype)initWithDescriptor:(int)descriptor readable:(std::function<void()>)readable;
- (void)stop;
@end

namespace {

NSArray* all_modes() {
    return @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, NSModalPanelRunLoopMode ];
}

}  // namespace

@implementation DescriptorWatcher

- (instancetype)initWithDescriptor:(int)descriptor readable:(std::function<void()>)readable {
    if (!(self = [super init])) return nil;
    _descriptor = descriptor;
    _readable = new std::function<void()>(std::move(readable));
    for (NSString* mode in all_modes()) {
        [[NSRunLoop currentRunLoop] addEvent:[self place] type:ET_RDESC watcher:self forMode:mode];
    }
    return self;
}

- (void*)place {
    return reinterpret_cast<void*>(static_cast<intptr_t>(_descriptor));
}

- (void)stop {
    for (NSString* mode in all_modes()) {
        [[NSRunLoop currentRunLoop] removeEvent:[self place] type:ET_RDESC forMode:mode all:YES];
    }
    _descriptor = -1;
}

- (void)dealloc {
    delete _readable;
    [super dealloc];
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra, (void)mode;
    [[self retain] autorelease];  // the callback may end the watch
    if (_descriptor < 0) return;
    @try {
        (*_readable)();
    } @catch (NSException* exception) {
        NSLog(@"DescriptorWatch: %@", [exception reason]);
    }
}

- (NSDate*)timedOutEvent:(void*)data type:(RunLoopEventType)type forMode:(NSString*)mode {
    (void)data, (void)type, (void)mode;
    return nil;
}

@end

DescriptorWatch::DescriptorWatch(int descriptor, std::function<void()> readable)
    : watcher_([[DescriptorWatcher alloc] initWithDescriptor:descriptor
                                                    readable:std::move(readable)]) {}

DescriptorWatch::~DescriptorWatch() {
    [watcher_ stop];
    [watcher_ release];
}
