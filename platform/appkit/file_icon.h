// An icon that has looked at nothing yet: a menu of thousands of rows has one for each item and
// draws a few dozen. Main thread.
#pragma once

#include <AppKit/AppKit.h>

// Made at once for any path. What the file is and which pictures it has is found out when somebody
// first asks for the representations, as drawing, copying and archiving do.
@interface FileIcon : NSImage {
  @private
    NSString* _leaf;      // the path's end; its beginning, with the slash, is the file name's
    signed char _hidden;  // below 0: nobody has asked
}
- (instancetype)initWithPath:(NSString*)path;
@end
