// Objects that carry out a change of a window or a view softly.
#include <QuartzCore/QuartzCore.h>

#include <unordered_map>

#include "appkit/view_fade.h"
#include "desktop/desktop_settings.h"
#include "events/deadline.h"
#include "objc/method_patch.h"
#include "x11/screens.h"

namespace {

constexpr NSTimeInterval window_fade_duration = 0.25, step_interval = 1.0 / 60;

}  // namespace

// Steps a window's alpha from a timer, also while menus track.
@interface WindowFade : NSObject {
  @private
    NSWindow* _window;  // not retained: its fade ends with it
    CGFloat _from, _to;
    NSTimeInterval _begun;
    NSTimer* _timer;
}
- (instancetype)initWithWindow:(NSWindow*)window to:(CGFloat)alpha;
- (void)stop;
@end

namespace {

std::unordered_map<NSWindow*, WindowFade*>& fades() {
    static auto* running = new std::unordered_map<NSWindow*, WindowFade*>;
    return *running;
}

void end_fade(NSWindow* window) {
    const auto found = fades().find(window);
    if (found == fades().end()) return;
    WindowFade* fade = found->second;
    fades().erase(found);
    [fade stop];
    [fade release];
}

std::unordered_map<NSView*, NSDictionary*>& all_animations() {
    static auto* animations = new std::unordered_map<NSView*, NSDictionary*>;
    return *animations;
}

IMP stock_window_dealloc, stock_view_dealloc;

void deallocate_view(NSView* self, SEL selector) {
    if (const auto found = all_animations().find(self); found != all_animations().end()) {
        [found->second release];
        all_animations().erase(found);
    }
    reinterpret_cast<void (*)(id, SEL)>(stock_view_dealloc)(self, selector);
}

void deallocate_window(NSWindow* self, SEL selector) {
    if (!fades().empty()) end_fade(self);
    reinterpret_cast<void (*)(id, SEL)>(stock_window_dealloc)(self, selector);
}

}  // namespace

@implementation WindowFade

- (instancetype)initWithWindow:(NSWindow*)window to:(CGFloat)alpha {
    if (!(self = [super init])) return nil;
    _window = window;
    _from = [window alphaValue];
    _to = alpha;
    _begun = seconds_now();
    _timer = [NSTimer timerWithTimeInterval:step_interval
                                     target:self
                                   selector:@selector(step:)
                                   userInfo:nil
                                    repeats:YES];
    for (NSString* mode in @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:_timer forMode:mode];
    }
    return self;
}

- (void)step:(NSTimer*)timer {
    (void)timer;
    const double passed = (seconds_now() - _begun) / window_fade_duration;
    const bool over = passed >= 1;
    [_window setAlphaValue:over ? _to : _from + (_to - _from) * passed];
    if (over) end_fade(_window);
}

- (void)stop {
    [_timer invalidate];
    _timer = nil;
}

@end

// Forwards every message that it does not know to its owner, which carries it out at once.
@interface OwnerAnimator : NSProxy {
  @protected
    id _owner;  // retained
}
- (instancetype)initWithOwner:(id)owner;
@end

@implementation OwnerAnimator

- (instancetype)initWithOwner:(id)owner {
    _owner = [owner retain];
    return self;
}

- (void)dealloc {
    [_owner release];
    [super dealloc];
}

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    return [_owner methodSignatureForSelector:selector];
}

- (void)forwardInvocation:(NSInvocation*)invocation {
    [invocation invokeWithTarget:_owner];
}

@end

@interface WindowAnimator : OwnerAnimator
@end

@implementation WindowAnimator

- (void)setAlphaValue:(CGFloat)alpha {
    end_fade(_owner);
    if (windows_are_composed() && DesktopSettings().animates()) {
        fades()[_owner] = [[WindowFade alloc] initWithWindow:_owner to:alpha];
    } else {
        [_owner setAlphaValue:alpha];
    }
}

@end

@interface ViewAnimator : OwnerAnimator
@end

@implementation ViewAnimator

- (void)addSubview:(NSView*)view {
    ViewFade* fade = [ViewFade fadeOfView:_owner];
    [_owner addSubview:view];
    [fade start];
}

- (void)replaceSubview:(NSView*)view with:(NSView*)other {
    ViewFade* fade = [ViewFade fadeOfView:_owner];
    [_owner replaceSubview:view with:other];
    [fade start];
}

@end

@implementation NSWindow (MacAnimation)

- (instancetype)animator {
    return (id)[[[WindowAnimator alloc] initWithOwner:self] autorelease];
}

@end

@implementation NSView (MacAnimation)

- (instancetype)animator {
    return (id)[[[ViewAnimator alloc] initWithOwner:self] autorelease];
}

// Few views have animations, so a table keeps them by view. It does not retain the view.
- (void)setAnimations:(NSDictionary*)animations {
    NSDictionary* kept = [animations copy];
    [all_animations()[self] release];
    all_animations()[self] = kept;
}

- (NSDictionary*)animations {
    const auto found = all_animations().find(self);
    return found == all_animations().end() ? [NSDictionary dictionary] : found->second;
}

// There are no layers; everything that needs one on the Mac works without it here.
- (void)setWantsLayer:(BOOL)wants {
    (void)wants;
}

@end

@interface AnimatorsInstaller : NSObject
@end

@implementation AnimatorsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWindow", "dealloc", reinterpret_cast<IMP>(deallocate_window), &stock_window_dealloc},
        {"NSView", "dealloc", reinterpret_cast<IMP>(deallocate_view), &stock_view_dealloc},
    };
    patch_methods(patches);
}

@end
