// The window of an alert. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "panels/alert_layout.h"
#include "panels/alert_paint.h"
#include "panels/dialog_panel.h"

@interface AlertPanel : DialogPanel {
  @private
    const alert_layout_t* _layout;  // outlives it
    const alert_words_t* _words;    // as well
}
// Shows it and returns when a button has been hit: its item. Escape and the window's close button
// hit the cancel button, without one the default button. 0 when the modal session was ended by
// somebody else.
+ (int)runWithWords:(const alert_words_t&)words;
// Its message and explanation.
- (NSString*)text;
// The middle of a button, in pixels of the server; {-1, -1} without such a button.
- (point_t)middleOfItem:(int)item;
@end
