#pragma once

#include <AppKit/NSView.h>

extern "C" {
extern NSString* NSEventTrackingRunLoopMode;
}

enum { NSBorderlessWindowMask = 0 };
enum { NSBackingStoreRetained = 0, NSBackingStoreNonretained = 1, NSBackingStoreBuffered = 2 };
typedef NSUInteger NSBackingStoreType;

@protocol NSWindowDelegate <NSObject>
@end

@interface NSWindow : NSResponder <NSAnimatablePropertyContainer>
- (id)initWithContentRect:(NSRect)contentRect
                styleMask:(NSUInteger)style
                  backing:(NSBackingStoreType)type
                    defer:(BOOL)flag;
- (id)contentView;
- (NSScreen*)screen;
- (NSRect)frame;
- (void)setFrameOrigin:(NSPoint)point;
- (void)setFrame:(NSRect)frame display:(BOOL)display animate:(BOOL)animate;
- (NSInteger)windowNumber;
- (void)setLevel:(NSInteger)level;
- (void)setAlphaValue:(CGFloat)alpha;
- (void)setOpaque:(BOOL)isOpaque;
- (void)setBackgroundColor:(NSColor*)color;
- (void)setReleasedWhenClosed:(BOOL)flag;
- (void)setCanBeVisibleOnAllSpaces:(BOOL)flag;
- (void)orderFront:(id)sender;
- (void)orderOut:(id)sender;
@end

@interface NSApplication : NSResponder
@end
