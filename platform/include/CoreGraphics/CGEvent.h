// Pointer events on their way to a program, and taps that watch or change them. Main thread, but
// for what says otherwise.
//
// Event locations count from the upper left of the first screen; "unflipped" ones from the lower
// left, as AppKit's.
#pragma once

#include <Carbon/Processes.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventSource* CGEventSourceRef;
typedef struct __CGEventTapProxy* CGEventTapProxy;
typedef uint64_t CGEventMask;
typedef uint32_t CGEventTapLocation;
typedef uint32_t CGEventTapPlacement;
typedef uint32_t CGEventTapOptions;
typedef uint32_t CGMouseButton;
typedef uint32_t CGEventType;

enum {
    kCGEventNull = 0,
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventRightMouseDown = 3,
    kCGEventRightMouseUp = 4,
    kCGEventMouseMoved = 5,
    kCGEventLeftMouseDragged = 6,
    kCGEventRightMouseDragged = 7,
    kCGEventOtherMouseDown = 25,
    kCGEventOtherMouseUp = 26,
    kCGEventOtherMouseDragged = 27,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE
};
enum { kCGMouseButtonLeft = 0, kCGMouseButtonRight = 1, kCGMouseButtonCenter = 2 };
enum { kCGHIDEventTap = 0, kCGSessionEventTap = 1 };
enum { kCGHeadInsertEventTap = 0, kCGTailAppendEventTap = 1 };
enum { kCGEventTapOptionDefault = 0, kCGEventTapOptionListenOnly = 1 };

#define CGEventMaskBit(type) ((CGEventMask)1 << (type))

// Returns the event that goes on: the one it was given, another one (which it gives away), or null
// to swallow it. A listen-only tap's answer is not looked at.
typedef CGEventRef (*CGEventTapCallBack)(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                         void* user_info);

// A tap on the events of this process, in the path from the display to the application's event
// queue readers, menus that track included. Owned by the caller, enabled, and silent until its
// source is in the run loop. Mouse-moved is seen even by loops that did not ask for it. Null for
// any other process, and while the application has no display.
//
// An active tap's callback that takes a second or more is too late: the event goes on unchanged,
// the tap is disabled and the callback is told so by kCGEventTapDisabledByTimeout.
CFMachPortRef CGEventTapCreateForPSN(void* process_serial_number, CGEventTapPlacement place,
                                     CGEventTapOptions options, CGEventMask mask,
                                     CGEventTapCallBack callback, void* user_info);

// A tap at the session: it sees the buttons pressed and released in every program's windows, in the
// order in which they were, each with the place of the pointer when it is read. Listen-only, of
// presses and releases alone, and at kCGSessionEventTap; null for anything else, and where the
// display does not tell (no X Input extension 2.2). Where the pointer is in a window that is not
// the X server's, as under Wayland, nothing is seen.
CFMachPortRef CGEventTapCreate(CGEventTapLocation location, CGEventTapPlacement place,
                               CGEventTapOptions options, CGEventMask mask,
                               CGEventTapCallBack callback, void* user_info);

void CGEventTapEnable(CFMachPortRef tap, bool enable);
bool CGEventTapIsEnabled(CFMachPortRef tap);

// Events are released with CFRelease. An event without a type is one that says nothing.
CGEventRef CGEventCreate(CGEventSourceRef source);
// `button` counts for the events of other buttons than left and right.
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint location,
                                   CGMouseButton button);
CGEventType CGEventGetType(CGEventRef event);
CGPoint CGEventGetLocation(CGEventRef event);
CGPoint CGEventGetUnflippedLocation(CGEventRef event);

#ifdef __cplusplus
}
#endif
