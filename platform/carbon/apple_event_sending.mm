#include <Carbon/AppleEvents.h>
#include <host/memory_reserve.h>
#include <host/process.h>

#import <Foundation/Foundation.h>

#include <deque>
#include <utility>

#include "carbon/apple_event_handlers.h"
#include "carbon/process_signature.h"
#include "corefoundation/common_modes.h"

using events::Value;

// While events wait, the run loop has one call of this object's method to make.
@interface AppleEventCourier : NSObject
+ (void)deliverNext;
@end

static std::deque<Value>& waiting() {
    static auto& waiting = *new std::deque<Value>;
    return waiting;
}

// The Mac hands events to an application in whatever mode it waits for input. The names are
// AppKit's, which this library does without.
static NSArray* delivery_modes() {
    NSMutableArray* modes = [NSMutableArray arrayWithArray:common_modes()];
    for (NSString* mode in @[ @"NSEventTrackingRunLoopMode", @"NSModalPanelRunLoopMode" ]) {
        if (![modes containsObject:mode]) [modes addObject:mode];
    }
    return modes;
}

static void call_courier() {
    @autoreleasepool {
        [[NSRunLoop mainRunLoop] performSelector:@selector(deliverNext)
                                          target:[AppleEventCourier class]
                                        argument:nil
                                           order:0
                                           modes:delivery_modes()];
    }
}

@implementation AppleEventCourier

+ (void)deliverNext {
    keep_memory_reserve();
    Value event = std::move(waiting().front());
    waiting().pop_front();
    // This comes before the handler, because the handler may run the loop itself.
    if (!waiting().empty()) call_courier();
    events::handle(std::move(event));
}

@end

static OSErr check_address(Value* event) {
    const Value* address = events::find(&event->attributes, keyAddressAttr);
    OSType signature = 0;
    if (!address || address->type != typeApplSignature) return errAEUnknownAddressType;
    if (address->bytes.size() != sizeof signature) return errAEUnknownAddressType;
    memcpy(&signature, address->bytes.data(), sizeof signature);
    return signature != 0 && signature == declared_signature() ? noErr : procNotFound;
}

static void note_sending(Value* event, AESendMode mode, SInt32 time_out) {
    const SInt32 interaction = mode & kAEAlwaysInteract;
    const Boolean reply_awaited = false;
    events::put(&event->attributes, keyReplyRequestedAttr,
                events::make_plain(typeBoolean, reply_awaited));
    events::put(&event->attributes, keyInteractLevelAttr,
                events::make_plain(typeSInt32, interaction));
    events::put(&event->attributes, keyTimeoutAttr, events::make_plain(typeSInt32, time_out));
}

OSErr AESend(const AppleEvent* event, AppleEvent* reply, AESendMode mode, AESendPriority,
             SInt32 timeOutInTicks, AEIdleUPP, AEFilterUPP) {
    if (reply) AEInitializeDesc(reply);
    if (!event) return paramErr;
    Value* value = events::value_of(event);
    if (!value || value->type != typeAppleEvent) return errAENotAppleEvent;
    if ((mode & kAEWaitReply) != kAENoReply) return errAEUnknownSendMode;
    const OSErr error = check_address(value);
    if (error != noErr) return error;

    if (waiting().empty()) call_courier();
    waiting().push_back(*value);
    note_sending(&waiting().back(), mode, timeOutInTicks);
    return noErr;
}

Boolean apple_events_are_waiting(void) { return !waiting().empty(); }
