#pragma once

#include <AppKit/NSDrawing.h>
#include <AppKit/NSEvent.h>
#include <Foundation/Foundation.h>

@class NSPasteboard, NSWindow;

enum { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };

enum { NSDragOperationNone = 0, NSDragOperationCopy = 1, NSDragOperationEvery = 0xFFFFFFFF };
typedef NSUInteger NSDragOperation;

@protocol NSAnimatablePropertyContainer
- (id)animator;
- (NSDictionary*)animations;
- (void)setAnimations:(NSDictionary*)dictionary;
@end

@interface NSResponder : NSObject <NSCoding> {
  @private
    id _nextResponder;
}
- (void)mouseDown:(NSEvent*)event;
- (void)mouseDragged:(NSEvent*)event;
- (BOOL)acceptsFirstResponder;
@end

@interface NSView : NSResponder <NSAnimatablePropertyContainer> {
  @private
    NSRect _frame;
    NSRect _bounds;
    NSView* _superview;
    NSWindow* _window;
}
- (id)initWithFrame:(NSRect)frame;
- (NSWindow*)window;
- (NSView*)superview;
- (NSRect)bounds;
- (NSRect)frame;
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)replaceSubview:(NSView*)oldView with:(NSView*)newView;
- (void)setAutoresizingMask:(NSUInteger)mask;
- (void)setNeedsDisplay:(BOOL)flag;
- (void)setWantsLayer:(BOOL)flag;
- (void)drawRect:(NSRect)dirtyRect;
- (BOOL)isOpaque;
- (BOOL)acceptsFirstMouse:(NSEvent*)event;
- (void)dragImage:(NSImage*)image
               at:(NSPoint)location
           offset:(NSSize)initialOffset
            event:(NSEvent*)event
       pasteboard:(NSPasteboard*)pasteboard
           source:(id)source
        slideBack:(BOOL)flag;
@end

@interface NSObject (NSDraggingSource)
- (NSDragOperation)draggingSourceOperationMaskForLocal:(BOOL)flag;
- (void)draggedImage:(NSImage*)image beganAt:(NSPoint)screenPoint;
- (void)draggedImage:(NSImage*)image movedTo:(NSPoint)screenPoint;
@end

enum { NSImageScaleProportionallyDown = 0, NSImageScaleAxesIndependently };
typedef NSUInteger NSImageScaling;
enum { NSImageAlignCenter = 0 };
typedef NSUInteger NSImageAlignment;
enum { NSImageFrameNone = 0 };
typedef NSUInteger NSImageFrameStyle;

@interface NSControl : NSView
@end

@interface NSImageView : NSControl
- (void)setImage:(NSImage*)image;
- (void)setImageAlignment:(NSImageAlignment)alignment;
- (void)setImageScaling:(NSImageScaling)scaling;
- (void)setImageFrameStyle:(NSImageFrameStyle)style;
- (void)setEditable:(BOOL)flag;
@end
