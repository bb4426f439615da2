// Taps on the events of this process. The application and every tracking loop ask GNUstep's display
// server for each event, so the taps stand there.
#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>
#include <GNUstepGUI/GSDisplayServer.h>

#include <vector>

#include "events/event_record.h"
#include "events/event_tap.h"
#include "objc/method_patch.h"

namespace {

// The taps are not retained: each takes itself out. The first tap sees an event first.
std::vector<EventTap*>& taps() {
    static auto* taps = new std::vector<EventTap*>;
    return *taps;
}

IMP stock_fetch;

NSEvent* fetch_stock(id server, SEL selector, unsigned mask, NSDate* limit, NSString* mode,
                     BOOL dequeue) {
    using Fetch = NSEvent* (*)(id, SEL, unsigned, NSDate*, NSString*, BOOL);
    return reinterpret_cast<Fetch>(stock_fetch)(server, selector, mask, limit, mode, dequeue);
}

CGEventMask watched_in(NSString* mode) {
    CGEventMask watched = 0;
    for (EventTap* tap : taps()) watched |= [tap maskInMode:mode];
    return watched;
}

// The event as the taps have changed it; nil when a tap has swallowed it.
NSEvent* pass_through_taps(NSEvent* event, NSString* mode) {
    CGEventRef record = (CGEventRef)[[EventRecord alloc] initWithEvent:event];
    // A callback may add or remove taps.
    for (EventTap* tap in [NSArray arrayWithObjects:taps().data() count:taps().size()]) {
        const CGEventType type = CGEventGetType(record);
        if (type == kCGEventNull) break;
        if (!([tap maskInMode:mode] & CGEventMaskBit(type))) continue;
        record = [tap pass:record];
        if (!record) return nil;
    }
    NSEvent* result = [[[(EventRecord*)record event] retain] autorelease];
    CFRelease(record);
    return result;
}

// A loop that only peeks sees events as they came; the taps see them when they are taken. When a
// tap wants moves that the loop did not ask for, they are taken for the tap and then dropped, as
// they would only wait in the queue.
NSEvent* fetch(id server, SEL selector, unsigned mask, NSDate* limit, NSString* mode,
               BOOL dequeue) {
    const CGEventMask watched = dequeue ? watched_in(mode) : 0;
    const unsigned moves = watched & CGEventMaskBit(kCGEventMouseMoved) ? NSMouseMovedMask : 0;
    for (;;) {
        NSEvent* event = fetch_stock(server, selector, mask | moves, limit, mode, dequeue);
        if (!event || !watched) return event;
        const CGEventType type = tapped_type([event type]);
        if (type != kCGEventNull && (watched & CGEventMaskBit(type))) {
            event = pass_through_taps(event, mode);
        }
        if (event && (mask & NSEventMaskFromType([event type]))) return event;
    }
}

// The class is known once the application has its display.
bool stand_in_event_path() {
    if (stock_fetch) return true;
    if (!GSCurrentServer()) return false;
    const MethodPatch patches[] = {
        {class_getName([GSCurrentServer() class]),
         "getEventMatchingMask:beforeDate:inMode:dequeue:", reinterpret_cast<IMP>(fetch),
         &stock_fetch},
    };
    patch_methods(patches);
    return stock_fetch != nullptr;
}

bool is_this_process(void* process) {
    if (!process) return false;
    ProcessSerialNumber current;
    Boolean same = false;
    return GetCurrentProcess(&current) == noErr &&
           SameProcess(&current, static_cast<ProcessSerialNumber*>(process), &same) == noErr &&
           same;
}

}  // namespace

// The tap leaves the path when it is released or invalidated.
@interface ProcessTap : EventTap
@end

@implementation ProcessTap

- (void)invalidate {
    [super invalidate];
    std::erase(taps(), self);
}

@end

CFMachPortRef CGEventTapCreateForPSN(void* process, CGEventTapPlacement place,
                                     CGEventTapOptions options, CGEventMask mask,
                                     CGEventTapCallBack callback, void* user_info) {
    if (!callback || !mask || !is_this_process(process) || !stand_in_event_path()) return nullptr;
    const TapSettings settings = {mask, callback, user_info,
                                  options == kCGEventTapOptionListenOnly};
    ProcessTap* tap = [[ProcessTap alloc] initWithSettings:settings
                                                descriptor:-1
                                                   handler:nullptr
                                                      info:nullptr];
    taps().insert(place == kCGHeadInsertEventTap ? taps().begin() : taps().end(), tap);
    return (CFMachPortRef)tap;
}
