// The window of an alert. Main thread.
#pragma once

#include "panels/alert_content.h"
#include "panels/widget_panel.h"

@interface AlertPanel : WidgetPanel
// Shows it and returns when a button has been hit: its item. Escape and the window's close button
// hit the cancel button, without one the default button. 0 when the modal session was ended by
// somebody else.
+ (int)runWithWords:(const alert_words_t&)words;
// Its message and explanation.
- (NSString*)text;
@end
