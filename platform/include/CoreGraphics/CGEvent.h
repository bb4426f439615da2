// Pointer events on their way to a program, and taps that watch or change them. Main thread, except
// where a function says otherwise.
//
// Event locations count from the upper left of the first screen; "unflipped" ones count from the
// lower left, as AppKit's do.
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
// to swallow the event. The answer of a listen-only tap is ignored.
typedef CGEventRef (*CGEventTapCallBack)(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                         void* user_info);

// A tap on the events of this process. It stands between the display and whatever reads the
// application's event queue, menus that track included. The caller owns it. It is enabled from the
// start, but silent until its source is in the run loop. It sees mouse-moved events even when the
// loop that reads did not ask for them. Null for any other process, and while the application has
// no display.
//
// When an active tap's callback takes a second or more, the event goes on unchanged, the tap is
// disabled, and the callback is told so by kCGEventTapDisabledByTimeout.
CFMachPortRef CGEventTapCreateForPSN(void* process_serial_number, CGEventTapPlacement place,
                                     CGEventTapOptions options, CGEventMask mask,
                                     CGEventTapCallBack callback, void* user_info);

// A tap at the session. It sees the buttons pressed and released in every program's windows, in
// order; each event has the place that the pointer has when the event is read. The tap must be
// listen-only, for presses and releases alone, and at kCGSessionEventTap, else the result is null.
// It is null too where the display does not tell of these events (no X Input extension 2.2). While
// the pointer is in a window that is not the X server's, as under Wayland, the tap sees nothing.
CFMachPortRef CGEventTapCreate(CGEventTapLocation location, CGEventTapPlacement place,
                               CGEventTapOptions options, CGEventMask mask,
                               CGEventTapCallBack callback, void* user_info);

void CGEventTapEnable(CFMachPortRef tap, bool enable);
bool CGEventTapIsEnabled(CFMachPortRef tap);

// Events are released with CFRelease. The type of a new event is kCGEventNull.
CGEventRef CGEventCreate(CGEventSourceRef source);
// `button` matters only for events of buttons other than left and right.
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint location,
                                   CGMouseButton button);
CGEventType CGEventGetType(CGEventRef event);
CGPoint CGEventGetLocation(CGEventRef event);
CGPoint CGEventGetUnflippedLocation(CGEventRef event);

#ifdef __cplusplus
}
#endif
