// Pointer events posted as if from the mouse. Any thread.
#pragma once

#include <CoreGraphics/CGGeometry.h>

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t CGError;
typedef uint32_t CGButtonCount;
typedef unsigned int boolean_t;
typedef uint32_t CGEventFilterMask;
typedef uint32_t CGEventSuppressionState;

enum { kCGErrorSuccess = 0, kCGErrorIllegalArgument = 1001, kCGErrorCannotComplete = 1004 };
enum {
    kCGEventFilterMaskPermitLocalMouseEvents = 1,
    kCGEventFilterMaskPermitLocalKeyboardEvents = 2,
    kCGEventFilterMaskPermitSystemDefinedEvents = 4
};
enum {
    kCGEventSuppressionStateSuppressionInterval = 0,
    kCGEventSuppressionStateRemoteMouseDrag = 1,
    kCGNumberOfEventSuppressionStates = 2
};

// Moves the pointer to a point from the upper left of the first screen, then presses and releases
// what differs from the last post: left, right, then the middle button. `update_position` false
// leaves the pointer where it is. With XTest; kCGErrorCannotComplete without.
CGError CGPostMouseEvent(CGPoint position, boolean_t update_position, CGButtonCount button_count,
                         boolean_t left_down, ... /* boolean_t each */);

// How long and which of the user's own events wait after a posted one. An X server never holds them
// back: an interval of 0 and the whole filter is how it is, anything else is refused.
CGError CGSetLocalEventsSuppressionInterval(double seconds);
CGError CGSetLocalEventsFilterDuringSuppressionState(CGEventFilterMask filter,
                                                     CGEventSuppressionState state);
// Whether the user's modifier keys go with posted events. They do, whatever is asked: there is one
// keyboard state.
CGError CGEnableEventStateCombining(boolean_t combine);

#ifdef __cplusplus
}
#endif
