// How a contextual menu is tracked: the session, which knows no windows, and the tracker that
// drives it. Not a Mac interface: hosts and tests use it to walk a menu without showing it, and to
// act on the menu that is shown. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// One popup: the levels now open, root first, and the highlighted item of each. It sends every
// delegate message at the moment at which the Mac sends it, whoever drives it:
//   opening a level   menuNeedsUpdate: or the item-by-item pair, then validation of the items where
//                     the menu enables them itself, then menuWillOpen:
//   highlighting      menu:willHighlightItem: on a real change, nil when the pointer leaves
//   closing           menuDidClose:, deepest level first
//   picking           after all levels have closed, the item's action
@interface MenuSession : NSObject {
  @private
    NSMutableArray* _levels;      // menus, root first
    NSMutableArray* _highlights;  // the item of each level, or NSNull
    NSMenu* _root;
    NSMenuItem* _pick;
    NSMenu* _pickMenu;
    NSMenu* _standIn;          // not retained: a level, or nothing
    NSMenuItem* _standInItem;  // not retained, as its menu is a level
    id _watcher;               // not retained
    BOOL _ending;
}
- (instancetype)initWithMenu:(NSMenu*)menu;
// The session that is being tracked now (the innermost), or nil.
+ (MenuSession*)current;
// The innermost session in which `menu` is an open level, or nil.
+ (MenuSession*)sessionOfMenu:(NSMenu*)menu;

- (NSMenu*)rootMenu;
- (NSArray*)levels;
- (NSMenuItem*)highlightedItemOfMenu:(NSMenu*)menu;

// The items of a level that are shown while `modifiers` are held: one of each group of alternates.
// A group is an item and the alternates right after it that have its key equivalent; an alternate
// shows while exactly its own Shift, Control, Option and Command keys are held, else the first.
+ (NSArray*)visibleItemsOfMenu:(NSMenu*)menu withModifiers:(NSUInteger)modifiers;

// Opens the root level. Sent once, by the tracker.
- (void)open;
// Highlights an item (nil: none) of an open level. Deeper levels stay open. A separator or a
// disabled item highlights nothing.
- (void)highlightItem:(NSMenuItem*)item inMenu:(NSMenu*)menu;
// Highlights the item, closes the levels after the item's own, and opens the item's submenu there.
// A submenu that is open already stays as it is. NO when the item has no submenu or is disabled,
// when its menu is not open, or when the tracker opens the submenu later because its disk has not
// answered yet.
- (BOOL)openSubmenuOfItem:(NSMenuItem*)item;
// Closes the levels deeper than `menu`.
- (void)closeLevelsBelowMenu:(NSMenu*)menu;
// These end the tracking without a pick, or with one (an enabled item with an action). The tracker
// notices at its next turn and closes the levels. The first of several calls counts.
- (void)cancel;
- (void)pickItem:(NSMenuItem*)item;
// Whether pickItem: would pick the item: not if it only opens its submenu.
+ (BOOL)canPickItem:(NSMenuItem*)item;
- (BOOL)isEnding;
- (NSMenuItem*)pickedItem;
// Closes every level, deepest first. Sent once, by the tracker.
- (void)close;
@end

// What a small picture over an item's image says.
enum MenuMark {
    menu_mark_none,
    menu_mark_bookmark,  // a place that the user has chosen to be in every menu
    menu_mark_link,      // the item was a link, and stands for what the link leads to
};

// The event of a right-click in no window, at a point of the screen from the lower left: for a menu
// that a program pops up by itself.
NSEvent* right_click_event(NSPoint at, NSUInteger modifiers);

// Shows or walks one popped-up menu, from -open to -close, and returns when it is over. The action
// of the pick is sent after that, before the popup returns.
@protocol MenuTracker
- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font;
@end

// What an alternate item shows. In a large menu an alternate has no object until somebody asks for
// it.
struct AlternateFields {
    NSString* title;  // as long as the item is in its menu
    NSUInteger modifiers;
    BOOL is_enabled, has_image, has_submenu;
};

@interface NSMenu (MenuTracking)
// The tracker of every contextual menu of this process; nil is the presenter, which shows it on
// the screen. Not retained.
+ (void)setContextMenuTracker:(id<MenuTracker>)tracker;
// A host's answer for items that have both an action and a submenu: whether an item only heads its
// submenu. A pick of such an item opens its submenu instead. Null: no item only heads its submenu.
+ (void)setHeadingQuestion:(BOOL (*)(NSMenuItem*))question;
// A host's answer for items that are drawn: which mark the item's image gets. Null: none.
+ (void)setMarkQuestion:(MenuMark (*)(NSMenuItem*))question;
// A host's answer, asked at each Escape: whether Escape closes the deepest level alone, and only a
// second Escape the whole menu. Null: Escape closes the whole menu.
+ (void)setEscapeQuestion:(BOOL (*)())question;
// The item at this index, to be read at once. In a large menu, an alternate has no object until
// somebody asks for it, and a walk that only reads all items need not make them: this one may stand
// for another item at the next call.
- (NSMenuItem*)glanceAtItemAtIndex:(NSInteger)index;
// Whether the item at this index is an alternate without an object; then *fields has its fields.
- (BOOL)readAlternate:(struct AlternateFields*)fields atIndex:(NSInteger)index;
// Whether an item of the menu, shown or not, has a view.
- (BOOL)hasItemWithView;
@end

@interface NSMenu (RowTips)
// A host's answer for a row that is kept for a while: the path of the item's file, which a tip may
// show; nil for none.
+ (void)setPathQuestion:(NSString* (*)(NSMenuItem*))question;
@end
