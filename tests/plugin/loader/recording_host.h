// A host's menu delegate and menu that record their calls.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>

// Answers every message of a menu's delegate.
@interface RecordingHost : NSObject {
  @private
    std::string _log;
    NSString* _itemToAdd;
    std::function<void()> _update;
}
// The messages since the last call, as words: "open update close highlight count item key".
- (std::string)log;
// An item to add at the end of a menu that asks for an update and does not have the item.
- (void)setItemToAdd:(NSString*)title;
// Called by each menuNeedsUpdate:.
- (void)setUpdate:(const std::function<void()>&)update;
@end

// Answers only menuDidClose:.
@interface SilentHost : NSObject
@end

@interface RecordingMenu : NSMenu {
  @private
    NSMutableArray* _changed;
    BOOL _refusesRemoval;
    BOOL _refusesInsertion;
    std::function<void()> _onChange;
}
// The titles of the items that have changed since the last call.
- (NSArray*)takeChanged;
// When set, removeItem: raises.
- (void)setRefusesRemoval:(BOOL)refuses;
// When set, insertItem:atIndex: raises.
- (void)setRefusesInsertion:(BOOL)refuses;
// Called before an item is inserted or removed.
- (void)setOnChange:(const std::function<void()>&)onChange;
// When set, removeAllItems raises in every menu of this class.
+ (void)setRefusesClearing:(BOOL)refuses;
@end
