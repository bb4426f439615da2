// The content of a menu's window: draws a level, holds the views of its items.
#pragma once

#include <AppKit/AppKit.h>

class MenuLevel;

@interface MenuLevelView : NSView {
  @private
    MenuLevel* _level;  // not owned
}
- (instancetype)initWithFrame:(NSRect)frame level:(MenuLevel*)level;
// The level is gone: the view draws nothing any more.
- (void)forgetLevel;
@end

// Holds an item's view at the menu's scale.
@interface MenuItemHolder : NSView
// `area` in pixels of the level's view.
- (instancetype)initWithArea:(NSRect)area scale:(double)scale itemView:(NSView*)view;
@end
