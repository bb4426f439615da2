// An icon that looks at its file late: a menu of thousands of rows has an icon for each item and
// draws only a few dozen. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Can be made for any path without a look at the disk. The icon finds out what the file is and
// which pictures it has when somebody first asks for the representations, as drawing, copying and
// archiving do.
@interface FileIcon : NSImage {
  @private
    NSString* _leaf;      // the path's end; `_fileName` is its beginning, with the slash
    signed char _hidden;  // below 0: not asked yet
    signed char _link;    // a LinkState, once `_hidden` is known
}
- (instancetype)initWithPath:(NSString*)path;
// The same, autoreleased. Of the thousands of icons of a large level most go at once, as items
// share them, so this uses the objects of those again.
+ (instancetype)iconOfPath:(NSString*)path;
@end
