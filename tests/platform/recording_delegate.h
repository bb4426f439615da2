// Menu delegates for tests: one records its messages, one supplies items one by one.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

// Also the target of the items that it makes.
@interface RecordingDelegate : NSObject {
  @private
    NSMutableArray* _log;
    NSMutableArray* _menus;
    NSMutableArray* _names;
}
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
- (void)menu:(NSMenu*)menu willHighlightItem:(NSMenuItem*)item;
- (void)picked:(id)sender;
// A menu that does not enable items itself, with the receiver as its delegate.
- (NSMenu*)menuNamed:(NSString*)name;
- (void)nameMenu:(NSMenu*)menu as:(NSString*)name;
- (NSMenuItem*)addItem:(NSString*)title toMenu:(NSMenu*)menu;
- (void)note:(NSString*)line;
// The lines since the last call, joined by ", ".
- (std::string)takeLog;
- (std::string)log;
@end

// Three items, "item 0" to "item 2"; does not answer menuNeedsUpdate:.
@interface ItemByItemDelegate : NSObject
@end
