// Dragging files out of an open menu with Command held, and pointer movement over menus. Both come
// from this process's event tap. Main thread.
#pragma once

#include <CoreGraphics/CGEvent.h>

#include "controller/DVDelvio.h"

struct dv_tree_t;

// The tap's callback.
CGEventRef dvDragInterceptionCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                      void* user_info);

@interface DVDelvio (DraggingAdditions)
// Called once. Without a tap there are no drags and no hover previews.
- (void)createEventTapForDragInterception;
- (void)enableEventTap:(id)sender;
- (void)disableEventTap:(id)sender;
// Returns the event that goes on to the menu.
- (CGEventRef)handleEventForDragInterception:(CGEventRef)event;
// Starts a drag of the element a moment later, when the menu has closed.
- (void)initiateDragWithElem:(dv_tree_t*)elem;
- (void)beginDelayedDrag:(id)sender;
- (void)hideDragWindow:(id)sender;
// Where the pointer is, from the upper left of the first screen.
- (NSPoint)currentUnflippedMouseLocation;
@end
