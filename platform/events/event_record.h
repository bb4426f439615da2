// The object behind a CGEventRef.
#pragma once

#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>

@interface EventRecord : NSObject {
  @private
    CGEventType _type;
    CGPoint _location;  // flipped
    CGMouseButton _button;
    NSEvent* _event;  // retained: the application's own, nil for one of our making
}
- (instancetype)initWithType:(CGEventType)type
                    location:(CGPoint)location
                      button:(CGMouseButton)button;
// Makes the record of an event on its way to the application.
- (instancetype)initWithEvent:(NSEvent*)event;
- (CGEventType)type;
- (CGPoint)location;
- (CGMouseButton)button;
// The application's event that says the same as this record; nil when the record says nothing.
- (NSEvent*)event;
@end

// The type under which taps see an event of the application; kCGEventNull when taps do not see it.
CGEventType tapped_type(NSEventType type);

// These convert between AppKit's screen points and flipped ones.
CGPoint flipped_point(NSPoint point);
NSPoint unflipped_point(CGPoint point);
