#include "look/hidden_icons.h"

#include <AppKit/AppKit.h>

#include <objc/runtime.h>

// An image with a mark: nothing is added, so that any image can become one.
@interface HiddenFileIcon : NSImage
@end

@implementation HiddenFileIcon
@end

void mark_as_hidden(NSImage* icon) {
    if ([icon class] == [NSImage class]) object_setClass(icon, [HiddenFileIcon class]);
}

bool is_icon_of_hidden_file(NSImage* icon) { return [icon isKindOfClass:[HiddenFileIcon class]]; }
