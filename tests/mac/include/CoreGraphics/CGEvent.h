#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <CoreGraphics/CGGeometry.h>

extern "C" {

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventSource* CGEventSourceRef;
typedef struct __CGEventTapProxy* CGEventTapProxy;

typedef uint64_t CGEventMask;
typedef uint32_t CGEventType;
typedef uint32_t CGMouseButton;
typedef uint32_t CGEventTapLocation;
typedef uint32_t CGEventTapPlacement;
typedef uint32_t CGEventTapOptions;

enum { kCGMouseButtonLeft = 0, kCGMouseButtonRight = 1, kCGMouseButtonCenter = 2 };
enum {
    kCGEventNull = 0,
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventMouseMoved = 5,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE
};
enum { kCGHIDEventTap = 0, kCGSessionEventTap, kCGAnnotatedSessionEventTap };
enum { kCGHeadInsertEventTap = 0, kCGTailAppendEventTap };
enum { kCGEventTapOptionDefault = 0, kCGEventTapOptionListenOnly = 1 };

#define CGEventMaskBit(eventType) ((CGEventMask)1 << (eventType))

typedef CGEventRef (*CGEventTapCallBack)(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                         void* userInfo);

CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                               CGEventTapOptions options, CGEventMask eventsOfInterest,
                               CGEventTapCallBack callback, void* userInfo);
CFMachPortRef CGEventTapCreateForPSN(void* processSerialNumber, CGEventTapPlacement place,
                                     CGEventTapOptions options, CGEventMask eventsOfInterest,
                                     CGEventTapCallBack callback, void* userInfo);
void CGEventTapEnable(CFMachPortRef tap, bool enable);
bool CGEventTapIsEnabled(CFMachPortRef tap);

CGEventRef CGEventCreate(CGEventSourceRef source);
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint location,
                                   CGMouseButton button);
CGEventType CGEventGetType(CGEventRef event);
CGPoint CGEventGetLocation(CGEventRef event);
CGPoint CGEventGetUnflippedLocation(CGEventRef event);
}
