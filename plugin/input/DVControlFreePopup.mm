#include "input/DVControlFreePopup.h"

#include <Carbon/Carbon.h>
#include <CoreGraphics/CGRemoteOperation.h>

#include <unistd.h>

#include "controller/DVDelvio.h"
#include "finder/dv_finder.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"

namespace {

constexpr CGEventMask popup_events =
    CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventLeftMouseUp);
constexpr useconds_t poll_interval = 10000;
constexpr uint32_t only_finder_in_front = 1;

void permit_all_local_events() {
    constexpr CGEventFilterMask all = kCGEventFilterMaskPermitLocalMouseEvents |
                                      kCGEventFilterMaskPermitLocalKeyboardEvents |
                                      kCGEventFilterMaskPermitSystemDefinedEvents;
    CGSetLocalEventsSuppressionInterval(0.0);
    CGSetLocalEventsFilterDuringSuppressionState(all, kCGEventSuppressionStateSuppressionInterval);
    CGSetLocalEventsFilterDuringSuppressionState(all, kCGEventSuppressionStateRemoteMouseDrag);
}

void post_right_click(CGPoint at) {
    constexpr boolean_t up = false, down = true;
    permit_all_local_events();
    CGEnableEventStateCombining(false);
    CGPostMouseEvent(at, true, 2, up, down);
    CGPostMouseEvent(at, true, 2, up, up);
    CGEnableEventStateCombining(true);
}

}  // namespace

CGEventRef dvCFPEventTapCallback(CGEventTapProxy, CGEventType type, CGEventRef event, void* popup) {
    if (type == kCGEventLeftMouseDown) {
        [static_cast<DVControlFreePopup*>(popup) mouseDownAt:CGEventGetUnflippedLocation(event)
                                                     flipped:CGEventGetLocation(event)];
    }
    return event;
}

@interface DVControlFreePopup (Timing)
- (uint32_t)dvWaitForPressAfter:(uint32_t)seen;
- (BOOL)dvPointerIsStill;
- (BOOL)dvIsHeldSince:(uint32_t)press;
- (BOOL)dvIsLetGoUnmoved;
@end

@implementation DVControlFreePopup

+ (DVControlFreePopup*)sharedControlFreePopup {
    static DVControlFreePopup* shared;
    if (!shared) shared = [[DVControlFreePopup alloc] init];
    return shared;
}

- (instancetype)init {
    if (!(self = [super init])) return nil;
    dv = [[DVDelvio sharedDelvio] getDV];
    if (!dv) {
        [self release];
        return nil;
    }
    pthread_mutex_init(&mouseLock, nullptr);
    pthread_cond_init(&waitMouseDown, nullptr);
    @try {
        [NSThread detachNewThreadSelector:@selector(controlFreePopupThread:)
                                 toTarget:self
                               withObject:nil];
    } @catch (NSException* exception) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Error creating thread: %s\n", [[exception reason] UTF8String]);
        }
    }
    evtTap =
        CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap, kCGEventTapOptionListenOnly,
                         popup_events, dvCFPEventTapCallback, self);
    if (!evtTap) {
        if (dvEnableDebugOutput) dvdprintf("Delvio: Error creating mach port ref\n");
        return self;
    }
    CFRunLoopSourceRef source = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, evtTap, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    CFRelease(source);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Created runloop source and mach port ref\n");
    return self;
}

- (void)mouseDownAt:(CGPoint)unflipped flipped:(CGPoint)flipped {
    if (!dv->control_free_enabled) return;
    if (dv->control_free_enabled == only_finder_in_front && !dv_finder_is_front()) return;
    // A control-click already opens the menu.
    if ([NSEvent modifierFlags] & NSControlKeyMask) return;
    lastMouse = {unflipped.x, unflipped.y};
    postAtLoc = {flipped.x, flipped.y};
    lastMouseDown = dv_double_time();
    mouseDownCount++;
    cancelledCFP = NO;
    pthread_mutex_lock(&mouseLock);
    pthread_cond_broadcast(&waitMouseDown);
    pthread_mutex_unlock(&mouseLock);
}

- (void)mouseUpAt:(CGPoint)point {
    (void)point;
    cancelledCFP = YES;
}

- (void)controlFreePopupThread:(id)unused {
    (void)unused;
    uint32_t seen = 0;
    for (;;) {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        const uint32_t press = [self dvWaitForPressAfter:seen];
        if (dv->popup_wake) {
            [pool release];
            return;
        }
        if (dv->control_free_enabled) {
            usleep(dv->control_free_delay_usec);
            if ([self dvIsHeldSince:press] && [self dvIsLetGoUnmoved]) {
                if (dvEnableDebugOutput) dvdprintf("Delvio: Activate control-free popup\n");
                post_right_click(CGPointMake(postAtLoc.x, postAtLoc.y));
            }
        }
        seen = press;
        [pool release];
    }
}

@end

@implementation DVControlFreePopup (Timing)

- (uint32_t)dvWaitForPressAfter:(uint32_t)seen {
    pthread_mutex_lock(&mouseLock);
    while (mouseDownCount == seen && !dv->popup_wake) {
        pthread_cond_wait(&waitMouseDown, &mouseLock);
    }
    const uint32_t press = mouseDownCount;
    pthread_mutex_unlock(&mouseLock);
    return press;
}

// Compares exact positions: any movement cancels.
- (BOOL)dvPointerIsStill {
    const NSPoint pointer = [NSEvent mouseLocation];
    return pointer.x == lastMouse.x && pointer.y == lastMouse.y;
}

- (BOOL)dvIsHeldSince:(uint32_t)press {
    return [NSEvent pressedMouseButtons] != 0 && mouseDownCount == press && !cancelledCFP &&
           [self dvPointerIsStill];
}

// Shows the contextual-menu cursor until the button is released or the pointer moves.
- (BOOL)dvIsLetGoUnmoved {
    SetThemeCursor(kThemeContextualMenuArrowCursor);
    while ([NSEvent pressedMouseButtons]) {
        SetThemeCursor(kThemeContextualMenuArrowCursor);
        usleep(poll_interval);
        if (![self dvPointerIsStill]) return NO;
    }
    return YES;
}

@end
