#include "events/event_tap.h"

#include "events/deadline.h"

namespace {

// The time that the Mac waits for an active tap.
constexpr double longest_answer = 1;

CGEventTapProxy proxy_of(EventTap* tap) { return (CGEventTapProxy)tap; }

}  // namespace

@implementation EventTap

- (instancetype)initWithSettings:(const TapSettings&)settings
                      descriptor:(int)descriptor
                         handler:(MachPortHandler)handler
                            info:(void*)info {
    if (!(self = [super initWithDescriptor:descriptor handler:handler info:info])) return nil;
    _settings = settings;
    _enabled = YES;
    return self;
}

- (void)setEnabled:(BOOL)enabled {
    _enabled = enabled;
}

- (BOOL)isEnabled {
    return _enabled && [self isValid];
}

- (CGEventMask)maskInMode:(NSString*)mode {
    return [self isEnabled] && !_busy && [self isServedInMode:mode] ? _settings.mask : 0;
}

- (CGEventRef)pass:(CGEventRef)event {
    _busy = YES;
    const double began = seconds_now();
    CGEventRef answer = nullptr;
    @try {
        answer =
            _settings.callback(proxy_of(self), CGEventGetType(event), event, _settings.user_info);
    } @finally {
        _busy = NO;
    }
    // Nobody waits for a tap that only listens.
    const bool too_late = !_settings.listens_only && seconds_now() - began >= longest_answer;
    if (answer != event && (too_late || _settings.listens_only)) {
        CFRelease(answer);
        answer = event;
    }
    if (too_late) [self disableByTimeout];
    if (answer != event) CFRelease(event);
    return answer;
}

- (void)disableByTimeout {
    _enabled = NO;
    CGEventRef word = CGEventCreate(nullptr);
    CGEventRef answer =
        _settings.callback(proxy_of(self), kCGEventTapDisabledByTimeout, word, _settings.user_info);
    if (answer != word) CFRelease(answer);
    CFRelease(word);
}

@end

void CGEventTapEnable(CFMachPortRef tap, bool enable) { [(EventTap*)tap setEnabled:enable]; }

bool CGEventTapIsEnabled(CFMachPortRef tap) { return tap && [(EventTap*)tap isEnabled]; }
