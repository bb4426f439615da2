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

// Moves the pointer to a point, counted from the upper left of the first screen. Then presses and
// releases the buttons that differ from the last post: left, right, then the middle one. With
// `update_position` false the pointer stays where it is. Needs XTest; without it,
// kCGErrorCannotComplete.
CGError CGPostMouseEvent(CGPoint position, boolean_t update_position, CGButtonCount button_count,
                         boolean_t left_down, ... /* boolean_t each */);

// How long, and which of, the user's own events are held back after a posted one. An X server never
// holds them back, so only an interval of 0 and the whole filter are accepted; anything else is
// refused.
CGError CGSetLocalEventsSuppressionInterval(double seconds);
CGError CGSetLocalEventsFilterDuringSuppressionState(CGEventFilterMask filter,
                                                     CGEventSuppressionState state);
// Whether posted events carry the user's modifier keys. They always do, since there is one keyboard
// state: `combine` changes nothing.
CGError CGEnableEventStateCombining(boolean_t combine);

#ifdef __cplusplus
}
#endif
