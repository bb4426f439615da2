// The window of an alert. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "appkit/alert_layout.h"
#include "appkit/alert_paint.h"

@interface AlertPanel : NSPanel
// Shows it and returns when a button has been hit: its item. 0 when the modal session was ended by
// somebody else.
+ (int)runWithWords:(const alert_words_t&)words;
@end
