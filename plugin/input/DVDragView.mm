#include "input/DVDragView.h"

#include <CoreGraphics/CoreGraphics.h>

#include "finder/dv_finder.h"
#include "menus/DVDelvio+Population.h"
#include "support/dv_log.h"
#include "tree/dv_tree.h"

@interface DVDragView (Drag)
- (void)dvDragFile:(NSString*)path fromEvent:(NSEvent*)event;
@end

@implementation DVDragView

- (dv_tree_t*)theDragTarget {
    return theDragTarget;
}

- (void)setTheDragTarget:(dv_tree_t*)target {
    dv_tree_t* copy = target ? dv_copy_elem(target) : nullptr;
    if (theDragTarget) dv_free_elem(theDragTarget);
    theDragTarget = copy;
}

- (void)mouseDragged:(NSEvent*)event {
    (void)event;
}

- (void)draggedImage:(NSImage*)image movedTo:(NSPoint)point {
    (void)image, (void)point;
}

- (void)draggedImage:(NSImage*)image beganAt:(NSPoint)point {
    (void)image, (void)point;
}

- (void)mouseDown:(NSEvent*)event {
    if (!theDragTarget) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Attempting to start drag for empty drag target.\n");
        }
    } else {
        NSString* path = [DVDelvio stringPathForTree:theDragTarget];
        if (dvEnableDebugOutput) dvdprintf("Delvio: Mouse down; dragging %s\n", [path UTF8String]);
        if (path) [self dvDragFile:path fromEvent:event];
    }
    [self setTheDragTarget:nullptr];
}

- (NSDragOperation)draggingSourceOperationMaskForLocal:(BOOL)isLocal {
    (void)isLocal;
    return NSDragOperationEvery;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    (void)event;
    return YES;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (BOOL)isOpaque {
    return NO;
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    CGContextRef context =
        static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort]);
    CGContextSetRGBFillColor(context, 1, 0, 0, 0.5);
    CGContextFillRect(context, NSRectToCGRect([self bounds]));
    if (dvEnableDebugOutput) dvdprintf("Delvio: Draw drag view\n");
}

- (void)dealloc {
    [self setTheDragTarget:nullptr];
    [super dealloc];
}

- (instancetype)initWithFrame:(NSRect)frame {
    return [super initWithFrame:frame];
}

@end

@implementation DVDragView (Drag)

- (void)dvDragFile:(NSString*)path fromEvent:(NSEvent*)event {
    NSPasteboard* pasteboard = [NSPasteboard pasteboardWithName:NSDragPboard];
    [pasteboard declareTypes:[NSArray arrayWithObject:NSFilenamesPboardType] owner:nil];
    [pasteboard setPropertyList:[NSArray arrayWithObject:path] forType:NSFilenamesPboardType];
    NSImage* icon = [[NSWorkspace sharedWorkspace] iconForFile:path];
    NSEvent* start = [NSEvent mouseEventWithType:NSLeftMouseDown
                                        location:[NSEvent mouseLocation]
                                   modifierFlags:[NSEvent modifierFlags]
                                       timestamp:dv_double_time()
                                    windowNumber:[[self window] windowNumber]
                                         context:nil
                                     eventNumber:[event eventNumber]
                                      clickCount:1
                                        pressure:1.0];
    const NSPoint at = [self convertPoint:[event locationInWindow] fromView:nil];
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Starting drag.. %f %f : Window: %p\n", at.x, at.y, [start window]);
    }
    [self dragImage:icon
                 at:at
             offset:NSZeroSize
              event:start
         pasteboard:pasteboard
             source:self
          slideBack:YES];
}

@end
