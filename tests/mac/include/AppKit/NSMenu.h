// Menus, their items and their delegates. A delegate says that it is one: the protocol is formal.
#pragma once

#include <Foundation/Foundation.h>

@class NSEvent, NSFont, NSImage, NSMenu, NSMenuItem, NSScreen, NSView;

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (NSInteger)numberOfItemsInMenu:(NSMenu*)menu;
- (BOOL)menu:(NSMenu*)menu
      updateItem:(NSMenuItem*)item
         atIndex:(NSInteger)index
    shouldCancel:(BOOL)shouldCancel;
- (BOOL)menuHasKeyEquivalent:(NSMenu*)menu
                    forEvent:(NSEvent*)event
                      target:(id*)target
                      action:(SEL*)action;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;
- (NSRect)confinementRectForMenu:(NSMenu*)menu onScreen:(NSScreen*)screen;
@end

@interface NSMenu : NSObject <NSCopying, NSCoding> {
  @private
    NSMenu* _supermenu;
    NSString* _title;
    id _itemArray;
}
+ (void)popUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
+ (void)popUpContextMenu:(NSMenu*)menu
               withEvent:(NSEvent*)event
                 forView:(NSView*)view
                withFont:(NSFont*)font;
- (id)initWithTitle:(NSString*)title;
- (void)insertItem:(NSMenuItem*)newItem atIndex:(NSInteger)index;
- (void)addItem:(NSMenuItem*)newItem;
- (void)removeItem:(NSMenuItem*)item;
- (void)removeAllItems;
- (void)setSubmenu:(NSMenu*)menu forItem:(NSMenuItem*)item;
- (NSArray*)itemArray;
- (NSInteger)numberOfItems;
- (void)setAutoenablesItems:(BOOL)flag;
- (void)itemChanged:(NSMenuItem*)item;
- (void)setDelegate:(id<NSMenuDelegate>)delegate;
- (id<NSMenuDelegate>)delegate;
- (void)cancelTracking;
@end

@interface NSMenuItem : NSObject <NSCopying, NSCoding> {
  @private
    NSMenu* _menu;
    NSString* _title;
    NSMenu* _submenu;
}
+ (NSMenuItem*)separatorItem;
- (id)initWithTitle:(NSString*)title action:(SEL)selector keyEquivalent:(NSString*)charCode;
- (NSMenu*)menu;
- (void)setSubmenu:(NSMenu*)submenu;
- (NSMenuItem*)parentItem;
- (NSString*)title;
- (void)setAttributedTitle:(NSAttributedString*)string;
- (void)setKeyEquivalentModifierMask:(NSUInteger)mask;
- (void)setImage:(NSImage*)image;
- (void)setEnabled:(BOOL)flag;
- (void)setAlternate:(BOOL)isAlternate;
- (void)setTarget:(id)object;
- (void)setTag:(NSInteger)tag;
- (NSInteger)tag;
- (void)setView:(NSView*)view;
@end
