// The controller: owns the state record, and the state of the contextual menu that is open.
// What it does stands in categories: labels in items/, the hover preview in preview/, population,
// selection and the delegate proxy in menus/, drags in input/, taking a menu over in loader/. Main
// thread.
#pragma once

#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>

#include <pthread.h>
#include <stdint.h>

#include "tree/dv_state.h"

@class DVDragView;
@class DVMenuItem;
@class DVPreviewWindowController;

// The menu font size in points that popups use; 0 keeps the host's font.
extern uint32_t dvFontSize;

@interface DVDelvio : NSObject <NSMenuDelegate> {
  @private
    NSMenu* _proxyMenu;     // retained: the menu that is filled, whose delegate the controller is
    NSMenu* _finderMenu;    // retained: the host's menu; the same, unless it goes into a submenu
    NSPasteboard* _pboard;  // carried, unused
    NSUserDefaults* defaults;               // carried, unused
    delvio_t* dv;                           // never freed
    signed char previewActive;              // carried, unused
    BOOL isInvoked;                         // a menu is taken over
    id previousDelegate;                    // not retained: the host menu's own delegate
    DVMenuItem* _currentlyHighlightedItem;  // not retained
    pthread_mutex_t treeLock;               // not recursive; held while a menu is taken or released
    NSWindow* dragWindow;                   // carries the drag view; never shown
    DVDragView* dragView;                   // owned by the window
    dv_point_t dragStartLocation;           // where a drag's press was
    CFMachPortRef dragInterceptionTap;      // null without a tap
    CFRunLoopSourceRef dragInterceptionRLSource;
    CGEventRef dragMouseEvent;  // carried, unused
    int32_t rootMenuSelectionCount;
    double lastMouseMovement;                            // in seconds
    NSTimer* hoverPreviewTimer;                          // the run loop's; nil when none is pending
    DVPreviewWindowController* previewWindowController;  // owned
    NSMutableArray* rootItems;  // the items put at the top of _proxyMenu, in order
}

// The one instance, made on the first call and never destroyed.
+ (DVDelvio*)sharedDelvio;

- (delvio_t*)getDV;
- (NSMenu*)finderMenu;
- (void)notificationReceived:(NSNotification*)notification;
// Sends itemChanged: to the menu for each of its items.
- (void)delayedChangedItems:(NSMenu*)menu;
@end

@interface DVDelvio (Parts)
// The preview's window, the drag's, and the event tap: called once, by init.
- (void)createParts;
@end

@interface DVDelvio (MenuLifecycle)
// Takes a contextual menu over and returns the menu to show: `menu` itself, or a fresh one of
// `menuClass` that has it as a submenu. Switched off or with Shift held: `menu`, untouched.
- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate withClass:(Class)menuClass;
- (NSMenu*)setCurrentMenu:(NSMenu*)menu withProxyDelegate:(id)delegate;
// Gives the menu back as it was. The last open menu's release frees all trees.
- (void)removeMenuAndDelegate;
// Takes the items of rootItems out of the proxy menu.
- (void)removeRootItems;
// Makes the host menu's delegate fill it now.
- (void)forceFinderMenuUpdate:(id)sender;
// Around the host's own clearing of a menu.
- (void)handleRemoveAllItemsPre:(NSMenu*)menu;
- (void)handleRemoveAllItemsPost:(NSMenu*)menu;
@end
