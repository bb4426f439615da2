#include "events/event_record.h"

namespace {

constexpr CGEventMask tapped_types =
    CGEventMaskBit(kCGEventLeftMouseDown) | CGEventMaskBit(kCGEventLeftMouseUp) |
    CGEventMaskBit(kCGEventRightMouseDown) | CGEventMaskBit(kCGEventRightMouseUp) |
    CGEventMaskBit(kCGEventMouseMoved) | CGEventMaskBit(kCGEventLeftMouseDragged) |
    CGEventMaskBit(kCGEventRightMouseDragged) | CGEventMaskBit(kCGEventOtherMouseDown) |
    CGEventMaskBit(kCGEventOtherMouseUp) | CGEventMaskBit(kCGEventOtherMouseDragged);

double first_screen_height() {
    NSArray* screens = [NSScreen screens];
    return [screens count] ? NSHeight([[screens objectAtIndex:0] frame]) : 0;
}

NSPoint screen_location(NSEvent* event) {
    NSWindow* window = [event window];
    const NSPoint at = [event locationInWindow];
    return window ? [window convertBaseToScreen:at] : at;
}

EventRecord* record_of(CGEventRef event) { return (EventRecord*)event; }

}  // namespace

// AppKit and Core Graphics number the types of pointer events alike.
CGEventType tapped_type(NSEventType type) {
    const bool tapped = type < 64 && (tapped_types & CGEventMaskBit(type));
    return tapped ? static_cast<CGEventType>(type) : kCGEventNull;
}

CGPoint flipped_point(NSPoint point) {
    return CGPointMake(point.x, first_screen_height() - point.y);
}

NSPoint unflipped_point(CGPoint point) {
    return NSMakePoint(point.x, first_screen_height() - point.y);
}

@implementation EventRecord

- (instancetype)initWithType:(CGEventType)type
                    location:(CGPoint)location
                      button:(CGMouseButton)button {
    if (!(self = [super init])) return nil;
    _type = type;
    _location = location;
    _button = button;
    return self;
}

- (instancetype)initWithEvent:(NSEvent*)event {
    const CGPoint location = flipped_point(screen_location(event));
    const CGMouseButton button = static_cast<CGMouseButton>([event buttonNumber]);
    self = [self initWithType:tapped_type([event type]) location:location button:button];
    _event = [event retain];
    return self;
}

- (void)dealloc {
    [_event release];
    [super dealloc];
}

- (CGEventType)type {
    return _type;
}

- (CGPoint)location {
    return _location;
}

- (CGMouseButton)button {
    return _button;
}

- (NSEvent*)event {
    if (_event) return _event;
    if (tapped_type(_type) == kCGEventNull) return nil;
    return [NSEvent mouseEventWithType:_type
                              location:unflipped_point(_location)
                         modifierFlags:[NSEvent modifierFlags]
                             timestamp:[[NSProcessInfo processInfo] systemUptime]
                          windowNumber:0
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:1
                          buttonNumber:_button
                                deltaX:0
                                deltaY:0
                                deltaZ:0];
}

@end

@implementation NSEvent (MacEvent)

+ (NSEvent*)eventWithCGEvent:(CGEventRef)event {
    return [record_of(event) event];
}

@end

CGEventRef CGEventCreate(CGEventSourceRef) {
    return (CGEventRef)[[EventRecord alloc] initWithType:kCGEventNull
                                                location:flipped_point([NSEvent mouseLocation])
                                                  button:kCGMouseButtonLeft];
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType type, CGPoint location,
                                   CGMouseButton button) {
    return (CGEventRef)[[EventRecord alloc] initWithType:type location:location button:button];
}

CGEventType CGEventGetType(CGEventRef event) { return [record_of(event) type]; }

CGPoint CGEventGetLocation(CGEventRef event) {
    return event ? [record_of(event) location] : CGPointMake(0, 0);
}

CGPoint CGEventGetUnflippedLocation(CGEventRef event) {
    const NSPoint point = unflipped_point(CGEventGetLocation(event));
    return CGPointMake(point.x, point.y);
}
