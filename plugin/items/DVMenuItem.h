// A menu item for one element of a tree. It shows the element's name, icon and label colour. Its
// action is dvItemSelected:. Main thread.
#pragma once

#include <AppKit/AppKit.h>

struct dv_tree_t;

@interface DVMenuItem : NSMenuItem {
  @private
    dv_tree_t* _tree;  // not owned: do not use it after the menu has closed
}
@property (assign, nonatomic) dv_tree_t* tree;

// The name to list an element under; a fixed text for null. The name lives as long as the element.
+ (const char*)nameForTree:(dv_tree_t*)tree;

// The designated initialiser. A null tree aborts. A nil title is the element's name.
- (instancetype)initWithTree:(dv_tree_t*)tree
                      target:(id)target
                       title:(NSString*)title
                    useImage:(BOOL)useImage;
- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target title:(NSString*)title;
- (instancetype)initWithTree:(dv_tree_t*)tree target:(id)target;

// An autoreleased item. With modifiers it is an alternate: shown in place of the item before it
// while they are held.
+ (DVMenuItem*)createAutoreleasedItemForTree:(dv_tree_t*)tree
                                      target:(id)target
                                   withTitle:(NSString*)title
                                andModifiers:(NSUInteger)modifiers
                                    useImage:(BOOL)useImage;
+ (DVMenuItem*)createAutoreleasedItemForTree:(dv_tree_t*)tree
                                      target:(id)target
                                   withTitle:(NSString*)title
                                andModifiers:(NSUInteger)modifiers;
@end
