// A menu that lists the contents of one element and is filled when it first opens. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <stdint.h>

struct dv_tree_t;

@interface DVMenu : NSMenu {
  @private
    dv_tree_t* _tree;
    BOOL _dvDidPopulate;
    BOOL _dvBeganAsyncPopulate;
    BOOL _dvIsPreviewMenu;
    int32_t _dvFolderLevel;
    int32_t _dvOpenWithIsAttachedToRoot;
    BOOL _dvNeedsOpenWithHead;
}
// Not owned: not to be followed after the menu has closed.
@property (assign, nonatomic) dv_tree_t* tree;
// The menu has been filled.
@property (assign, nonatomic) BOOL dvDidPopulate;
// Filling has been started on another queue.
@property (assign, nonatomic) BOOL dvBeganAsyncPopulate;
// A preview submenu rather than a folder's level.
@property (assign, nonatomic) BOOL dvIsPreviewMenu;
// How many folders stand above; 0 when none was given.
@property (assign, nonatomic) int32_t dvFolderLevel;
// Non-zero: the open-with submenu that this menu belongs to is the root menu's.
@property (assign, nonatomic) int32_t dvOpenWithIsAttachedToRoot;
// An open-with submenu whose first lines are still to be made.
@property (assign, nonatomic) BOOL dvNeedsOpenWithHead;

- (instancetype)initWithTitle:(NSString*)title tree:(dv_tree_t*)tree andLevel:(int32_t)level;
// The same at level 0.
- (instancetype)initWithTitle:(NSString*)title andTree:(dv_tree_t*)tree;
@end
