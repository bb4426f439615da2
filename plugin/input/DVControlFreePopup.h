// The contextual menu without Control and without a second button: the left button held still for a
// while and let go where it was pressed posts a right click there. One thread of its own does the
// timing.
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
    dv_point_t lastMouse;  // of the last accepted press, from the lower left
    dv_point_t postAtLoc;  // the same from the upper left
    double lastMouseDown;  // carried
    delvio_t* dv;
    uint32_t mouseDownCount;  // accepted presses
    BOOL cancelledCFP;
    pthread_mutex_t mouseLock;  // for the wait alone
    pthread_cond_t waitMouseDown;
}
// The one instance, made on the first call and never destroyed. Main thread.
+ (DVControlFreePopup*)sharedControlFreePopup;
// A press, at the same point in both coordinates. Main thread.
- (void)mouseDownAt:(CGPoint)unflipped flipped:(CGPoint)flipped;
// Cancels what the last press began.
- (void)mouseUpAt:(CGPoint)point;
// The thread. It ends when the record's popup_wake is set.
- (void)controlFreePopupThread:(id)unused;
@end
