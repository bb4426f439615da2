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
// Not owned: do not use it after the menu has closed.
@property (assign, nonatomic) dv_tree_t* tree;
// The menu has been filled.
@property (assign, nonatomic) BOOL dvDidPopulate;
// Another queue has been asked to fill the menu.
@property (assign, nonatomic) BOOL dvBeganAsyncPopulate;
// This is a preview submenu, not a folder's level.
@property (assign, nonatomic) BOOL dvIsPreviewMenu;
// The number of folders above this menu; 0 when none was given.
@property (assign, nonatomic) int32_t dvFolderLevel;
// Non-zero when this menu belongs to the root menu's open-with submenu.
@property (assign, nonatomic) int32_t dvOpenWithIsAttachedToRoot;
// This is an open-with submenu whose first lines have not been made yet.
@property (assign, nonatomic) BOOL dvNeedsOpenWithHead;

- (instancetype)initWithTitle:(NSString*)title tree:(dv_tree_t*)tree andLevel:(int32_t)level;
// The same at level 0.
- (instancetype)initWithTitle:(NSString*)title andTree:(dv_tree_t*)tree;
@end
