// A tap: a port with a callback that sees events.
#pragma once

#include <CoreGraphics/CGEvent.h>

#include "corefoundation/mach_port.h"

struct TapSettings {
    CGEventMask mask;
    CGEventTapCallBack callback;
    void* user_info;
    bool listens_only;
};

@interface EventTap : MachPort {
  @private
    TapSettings _settings;
    BOOL _enabled;
    BOOL _busy;  // in its callback
}
- (instancetype)initWithSettings:(const TapSettings&)settings
                      descriptor:(int)descriptor
                         handler:(MachPortHandler)handler
                            info:(void*)info;
- (void)setEnabled:(BOOL)enabled;
- (BOOL)isEnabled;
// The events that the tap would see now, in a loop that runs in `mode`.
- (CGEventMask)maskInMode:(NSString*)mode;
// Shows an event to the callback. Returns the event that goes on, or null. The caller owns it, as
// it owns `event`; when another event or none goes on, `event` is released.
- (CGEventRef)pass:(CGEventRef __attribute__((cf_consumed)))event
    __attribute__((cf_returns_retained));
@end
