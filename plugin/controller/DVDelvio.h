// The controller owns the state record and the state of the open contextual menu. Its methods are
// in categories: labels in items/, the hover preview in preview/, population, selection and the
// delegate proxy in menus/, drags in input/, taking over a menu in loader/. Main thread.
#pragma once

#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>

#include <pthread.h>
#include <stdint.h>

#include "tree/dv_state.h"

@class DVDragView;
@class DVMenuItem;
@class DVPreviewWindowController;

// The menu font size in points for popups; 0 keeps the host's font.
extern uint32_t dvFontSize;

@interface DVDelvio : NSObject <NSMenuDelegate> {
  @private
    NSMenu* _proxyMenu;         // retained: the menu that is filled; the controller is its delegate
    NSMenu* _finderMenu;        // retained: the host's menu; _proxyMenu unless in a submenu
    NSPasteboard* _pboard;      // carried, unused
    NSUserDefaults* defaults;   // carried, unused
    delvio_t* dv;               // never freed
    signed char previewActive;  // carried, unused
    BOOL isInvoked;             // a menu has been taken over
    id previousDelegate;        // not retained: the host menu's own delegate
    DVMenuItem* _currentlyHighlightedItem;  // not retained
    pthread_mutex_t treeLock;               // not recursive; held while a menu is taken or released
    NSWindow* dragWindow;                   // holds the drag view; never shown
    DVDragView* dragView;                   // owned by the window
    dv_point_t dragStartLocation;           // where the drag's press was
    CFMachPortRef dragInterceptionTap;      // null without a tap
    CFRunLoopSourceRef dragInterceptionRLSource;
    CGEventRef dragMouseEvent;  // carried, unused
    int32_t rootMenuSelectionCount;
    double lastMouseMovement;                            // in seconds
    NSTimer* hoverPreviewTimer;                          // the run loop's; nil when none is pending
    DVPreviewWindowController* previewWindowController;  // owned
    NSMutableArray* rootItems;  // the items added at the top of _proxyMenu, in order
}

// The one instance. The first call makes it; it is never destroyed.
+ (DVDelvio*)sharedDelvio;

- (delvio_t*)getDV;
- (NSMenu*)finderMenu;
- (void)notificationReceived:(NSNotification*)notification;
// Sends itemChanged: to the menu for each of its items.
- (void)delayedChangedItems:(NSMenu*)menu;
@end

@interface DVDelvio (Parts)
// Makes the preview window, the drag window and the event tap. Called once, by init.
- (void)createParts;
@end

@interface DVDelvio (MenuLifecycle)
// Takes over a contextual menu and returns the menu to show: `menu` itself, or a new menu of
// `menuClass` with `menu` as a submenu. When the plug-in is off or Shift is held, returns `menu`
// unchanged.
- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate withClass:(Class)menuClass;
- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate;
// Gives the menu back as it was. When the last open menu is given back, all trees are freed.
- (void)removeMenuAndDelegate;
// Removes the items in rootItems from the proxy menu.
- (void)removeRootItems;
// Makes the host menu's delegate fill it now.
- (void)forceFinderMenuUpdate:(id)sender;
// Called before and after the host clears a menu.
- (void)handleRemoveAllItemsPre:(NSMenu*)menu;
- (void)handleRemoveAllItemsPost:(NSMenu*)menu;
@end
