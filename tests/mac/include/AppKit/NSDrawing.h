// Colours, fonts, images and the graphics context.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

extern "C" {
extern NSString* const NSFontAttributeName;
extern NSString* const NSForegroundColorAttributeName;
}

@interface NSColor : NSObject <NSCopying, NSCoding>
+ (NSColor*)colorWithDeviceRed:(CGFloat)red
                         green:(CGFloat)green
                          blue:(CGFloat)blue
                         alpha:(CGFloat)alpha;
+ (NSColor*)grayColor;
+ (NSColor*)redColor;
+ (NSColor*)greenColor;
+ (NSColor*)blueColor;
+ (NSColor*)yellowColor;
+ (NSColor*)orangeColor;
+ (NSColor*)purpleColor;
+ (NSColor*)clearColor;
@end

@interface NSFont : NSObject <NSCopying, NSCoding>
+ (NSFont*)fontWithName:(NSString*)name size:(CGFloat)size;
+ (NSFont*)systemFontOfSize:(CGFloat)size;
@end

@interface NSImage : NSObject <NSCopying, NSCoding>
- (id)initWithCGImage:(CGImageRef)image size:(NSSize)size;
- (void)setSize:(NSSize)size;
- (NSSize)size;
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)currentContext;
- (void*)graphicsPort;
@end

@interface NSScreen : NSObject
+ (NSArray*)screens;
- (NSRect)frame;
- (NSRect)visibleFrame;
@end
