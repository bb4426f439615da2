#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreGraphics/CGGeometry.h>

extern "C" {

typedef int32_t CGError;
typedef uint32_t CGButtonCount;
typedef uint32_t CGEventFilterMask;
typedef uint32_t CGEventSuppressionState;

enum {
    kCGEventFilterMaskPermitLocalMouseEvents = 0x00000001,
    kCGEventFilterMaskPermitLocalKeyboardEvents = 0x00000002,
    kCGEventFilterMaskPermitSystemDefinedEvents = 0x00000004
};
enum {
    kCGEventSuppressionStateSuppressionInterval = 0,
    kCGEventSuppressionStateRemoteMouseDrag,
    kCGNumberOfEventSuppressionStates
};

CGError CGPostMouseEvent(CGPoint position, boolean_t updatePosition, CGButtonCount count,
                         boolean_t firstDown, ... /* boolean_t each */);
CGError CGSetLocalEventsSuppressionInterval(CFTimeInterval seconds);
CGError CGSetLocalEventsFilterDuringSuppressionState(CGEventFilterMask filter,
                                                     CGEventSuppressionState state);
CGError CGEnableEventStateCombining(boolean_t combineState);
}
