// The contextual menu without Control or a second button. When the user holds the left button still
// for a while and releases it where it was pressed, a right click is posted there. A separate
// thread does the timing.
#pragma once

#include <AppKit/AppKit.h>
#include <CoreGraphics/CGEvent.h>

#include <pthread.h>
#include <stdint.h>

#include "tree/dv_state.h"

// The tap's callback.
CGEventRef dvCFPEventTapCallback(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                 void* popup);

@interface DVControlFreePopup : NSObject {
  @private
    CFMachPortRef evtTap;  // null without a tap
    dv_point_t lastMouse;  // the last accepted press, from the lower left
    dv_point_t postAtLoc;  // the same point from the upper left
    double lastMouseDown;  // carried
    delvio_t* dv;
    uint32_t mouseDownCount;  // accepted presses
    BOOL cancelledCFP;
    pthread_mutex_t mouseLock;  // only for the wait
    pthread_cond_t waitMouseDown;
}
// The one instance. The first call makes it; it is never destroyed. Main thread.
+ (DVControlFreePopup*)sharedControlFreePopup;
// Reports a press; both arguments are the same point. Main thread.
- (void)mouseDownAt:(CGPoint)unflipped flipped:(CGPoint)flipped;
// Cancels the wait that the last press began.
- (void)mouseUpAt:(CGPoint)point;
// The thread's main method. It ends when the record's popup_wake is set.
- (void)controlFreePopupThread:(id)unused;
@end
