// What GNUstep's AppKit lacks, under the Mac's names. Main thread.
#pragma once

#include_next <AppKit/AppKit.h>

#include <CoreGraphics/CoreGraphics.h>

typedef struct __CGEvent* CGEventRef;

@interface NSMenu (MacMenu)
- (void)removeAllItems;
// Ends the tracking of the contextual menu that this menu belongs to, with nothing picked.
- (void)cancelTracking;
- (void)cancelTrackingWithoutAnimation;
// The highlighted item of this menu while it is open, else nil.
- (NSMenuItem*)highlightedItem;
// The font that this menu's items are shown in; nil is the look's own.
- (void)setFont:(NSFont*)font;
- (NSFont*)font;
// The private method that the Mac's class methods for popups call. Shows `menu` (the receiver) at
// `event` and returns when it has closed. `font` may be nil.
- (void)_popUpContextMenu:(NSMenu*)menu
                withEvent:(NSEvent*)event
                  forView:(NSView*)view
                 withFont:(NSFont*)font;
// Accepted and ignored: there are no descriptor-based menu plug-ins here.
- (void)_setContextMenuPluginAEDesc:(const struct AEDesc*)descriptor;
@end

@interface NSMenuItem (MacMenuItem)
// The item whose submenu holds the receiver's menu, or nil.
- (NSMenuItem*)parentItem;
// A view shown in place of the item's row; retained. Nil restores the row.
- (void)setView:(NSView*)view;
- (NSView*)view;
- (BOOL)isHighlighted;
@end

@interface NSWindow (MacWindow)
// Whether the window shows on every virtual desktop. It takes effect when the window is next
// ordered in. The window must not be deferred.
- (void)setCanBeVisibleOnAllSpaces:(BOOL)flag;
@end

@interface NSEvent (MacEvent)
// An event with what a Core Graphics one says (CoreGraphics/CGEvent.h), but without a window: its
// location is on the screen. Nil for a type that is no pointer event.
+ (NSEvent*)eventWithCGEvent:(CGEventRef)event;
@end

// Messages that the Mac sends to a menu's delegate; the contextual-menu presenter sends them here.
@protocol NSMenuDelegateMac
@optional
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;
@end

@interface NSImage (CoreGraphics)
// Copies the image's present pixels. A zero size means the size in pixels. Nil for a null image.
- (instancetype)initWithCGImage:(CGImageRef)image size:(NSSize)size;
@end

@interface NSWindow (MacAnimation)
// A stand-in for the window: changes of its alpha value take a quarter of a second. Without a
// compositor they are immediate, and a window with alpha 0 cannot be seen.
- (instancetype)animator;
@end

@interface NSView (MacAnimation)
// A stand-in for the view: subviews that are added or replaced through it fade in, when the view's
// animations have a CATransition that fades for the key "subviews".
- (instancetype)animator;
- (void)setAnimations:(NSDictionary*)animations;
- (NSDictionary*)animations;
// Accepted and ignored: there are no layers here.
- (void)setWantsLayer:(BOOL)wants;
@end
