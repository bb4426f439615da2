// The places in the different kinds of views.
#pragma once

#include "gworkspace/file_place.h"

// Icon view, list view, desktop.
@interface ViewerPlace : FilePlace
@end

// A column of the browser. The container is the browser.
@interface BrowserPlace : FilePlace {
  @private
    id<GWColumn> _column;
}
- (instancetype)initWithColumn:(NSView*)column view:(NSView*)view cell:(id<GWRep>)cell;
@end

// Icons on the shelf and in the path.
@interface PointerPlace : FilePlace
@end

@interface DockPlace : FilePlace
@end
