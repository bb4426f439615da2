#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

@class NSGraphicsContext, NSWindow;

enum {
    NSShiftKeyMask = 1 << 17,
    NSControlKeyMask = 1 << 18,
    NSAlternateKeyMask = 1 << 19,
    NSCommandKeyMask = 1 << 20
};

enum { NSLeftMouseDown = 1, NSLeftMouseUp = 2 };
typedef NSUInteger NSEventType;

@interface NSEvent : NSObject <NSCopying, NSCoding>
+ (NSEvent*)eventWithCGEvent:(CGEventRef)cgEvent;
+ (NSEvent*)mouseEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSUInteger)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)number
                       context:(NSGraphicsContext*)context
                   eventNumber:(NSInteger)eventNumber
                    clickCount:(NSInteger)clickCount
                      pressure:(float)pressure;
+ (NSPoint)mouseLocation;
+ (NSUInteger)modifierFlags;
+ (NSUInteger)pressedMouseButtons;
- (NSPoint)locationInWindow;
- (NSWindow*)window;
- (NSInteger)eventNumber;
@end
