#include <Carbon/Carbon.h>
#include <CoreGraphics/CGWindowLevel.h>

#include "controller/DVDelvio.h"
#include "input/DVDelvio+Dragging.h"
#include "input/DVDragView.h"
#include "preview/DVPreviewWindowController.h"

namespace {

NSWindow* create_drag_window(DVDragView* view) {
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 64, 64)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreRetained
                                                       defer:NO];
    [view setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [[window contentView] addSubview:view];
    [window setAlphaValue:0.5];
    [window setOpaque:NO];
    [window setCanBeVisibleOnAllSpaces:YES];
    [window setLevel:CGWindowLevelForKey(kCGStatusWindowLevelKey)];
    return window;
}

}  // namespace

@implementation DVDelvio (Parts)

- (void)createParts {
    previewWindowController = [[DVPreviewWindowController alloc] init];
    dragView = [[DVDragView alloc] initWithFrame:NSMakeRect(0, 0, 64, 64)];
    dragWindow = create_drag_window(dragView);
    // Timers and sources of the common modes also fire while a menu is tracking.
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), (CFStringRef)NSEventTrackingRunLoopMode);
    [self createEventTapForDragInterception];
}

@end
