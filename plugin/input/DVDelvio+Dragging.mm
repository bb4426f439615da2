#include "input/DVDelvio+Dragging.h"

#include <Carbon/Carbon.h>

#include "input/DVDragView.h"
#include "items/DVMenuItem.h"
#include "preview/DVDelvio+HoverPreview.h"
#include "support/dv_log.h"
#include "tree/dv_state.h"
#include "tree/dv_tree.h"

namespace {

constexpr CGEventMask watched_events = CGEventMaskBit(kCGEventLeftMouseDown) |
                                       CGEventMaskBit(kCGEventLeftMouseUp) |
                                       CGEventMaskBit(kCGEventMouseMoved);
constexpr NSTimeInterval menu_closing_time = 0.1;
constexpr CGFloat pointer_in_icon = 16;

}  // namespace

CGEventRef dvDragInterceptionCallback(CGEventTapProxy, CGEventType type, CGEventRef event, void*) {
    if (type != kCGEventTapDisabledByTimeout) {
        // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): the tap's caller releases it.
        return [[DVDelvio sharedDelvio] handleEventForDragInterception:event];
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Event tap was disabled! Schedule re-enable: %x\n", type);
    }
    [[DVDelvio sharedDelvio] enableEventTap:nil];
    return event;
}

@interface DVDelvio (DragInterception)
- (BOOL)dvTakesPress:(CGEventRef)event;
@end

@implementation DVDelvio (DraggingAdditions)

- (void)createEventTapForDragInterception {
    ProcessSerialNumber process;
    GetCurrentProcess(&process);
    dragInterceptionTap =
        CGEventTapCreateForPSN(&process, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                               watched_events, dvDragInterceptionCallback, self);
    if (!dragInterceptionTap) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Failed to create event tap; command-drags will not work.\n");
        }
        return;
    }
    dragInterceptionRLSource =
        CFMachPortCreateRunLoopSource(kCFAllocatorDefault, dragInterceptionTap, 0);
    if (!dragInterceptionRLSource) {
        if (dvEnableDebugOutput) {
            dvdprintf("Delvio: Failed to create runloop source for drag event tap\n");
        }
        return;
    }
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Tap: %p Source: %p\n", dragInterceptionTap, dragInterceptionRLSource);
    }
    CFRunLoopAddSource(CFRunLoopGetCurrent(), dragInterceptionRLSource, kCFRunLoopCommonModes);
}

- (void)dvSwitchEventTap:(bool)on {
    if (dragInterceptionTap) CGEventTapEnable(dragInterceptionTap, on);
    if (!dvEnableDebugOutput) return;
    const bool is_on = dragInterceptionTap && CGEventTapIsEnabled(dragInterceptionTap);
    dvdprintf("Delvio: Event tap status: %d\n", is_on);
}

- (void)enableEventTap:(id)sender {
    (void)sender;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Enabling event tap\n");
    [self dvSwitchEventTap:true];
}

- (void)disableEventTap:(id)sender {
    (void)sender;
    if (dvEnableDebugOutput) dvdprintf("Delvio: Disabling event tap\n");
    [self dvSwitchEventTap:false];
}

- (CGEventRef)handleEventForDragInterception:(CGEventRef)event {
    if (!isInvoked || !_proxyMenu) return event;
    const CGEventType type = CGEventGetType(event);
    const bool command = [NSEvent modifierFlags] & NSCommandKeyMask;
    if (type == kCGEventLeftMouseDown && command && [self dvTakesPress:event]) {
        // The menu never sees the press.
        // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): the tap's caller releases it.
        return CGEventCreate(nullptr);
    }
    if (type == kCGEventMouseMoved) [self dvPointerMoved];
    return event;
}

- (void)initiateDragWithElem:(dv_tree_t*)elem {
    if (dvEnableDebugOutput) dvdprintf("Delvio: Initiating drag for elem %p\n", elem);
    [dragWindow setFrameOrigin:NSZeroPoint];
    [dragView setTheDragTarget:elem];
    [self performSelector:@selector(beginDelayedDrag:) withObject:nil afterDelay:menu_closing_time];
}

- (void)beginDelayedDrag:(id)sender {
    (void)sender;
    const NSPoint pointer = [self currentUnflippedMouseLocation];
    const CGPoint at = CGPointMake(pointer.x - pointer_in_icon, pointer.y + pointer_in_icon);
    if (dvEnableDebugOutput) dvdprintf("Delvio: Activating delayed drag at %f %f\n", at.x, at.y);
    CGEventRef press =
        CGEventCreateMouseEvent(nullptr, kCGEventLeftMouseDown, at, kCGMouseButtonLeft);
    [dragView mouseDown:[NSEvent eventWithCGEvent:press]];
    CFRelease(press);
}

- (void)hideDragWindow:(id)sender {
    (void)sender;
    [dragWindow orderOut:self];
}

- (NSPoint)currentUnflippedMouseLocation {
    NSPoint pointer = [NSEvent mouseLocation];
    NSScreen* first = [[NSScreen screens] objectAtIndex:0];
    pointer.y = NSHeight([first frame]) - pointer.y;
    return pointer;
}

@end

@implementation DVDelvio (DragInterception)

// Whether the press starts a drag: it is on an item that stands for a file or folder.
- (BOOL)dvTakesPress:(CGEventRef)event {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Intercepting left mouse down event, %p\n", _currentlyHighlightedItem);
    }
    dv_tree_t* elem = [_currentlyHighlightedItem tree];
    if (!elem) return NO;
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Open with elem: %d Move-copy-elem: %d\n",
                  elem->origin & DV_ORIGIN_APP_LIST, elem->origin & DV_ORIGIN_MOVE_COPY);
    }
    if (elem->origin & (DV_ORIGIN_APP_LIST | DV_ORIGIN_MOVE_COPY)) return NO;
    const CGPoint location = CGEventGetLocation(event);
    dragStartLocation = {location.x, location.y};
    [self initiateDragWithElem:elem];
    [_proxyMenu cancelTracking];
    return YES;
}

@end
