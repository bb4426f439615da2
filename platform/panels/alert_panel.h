// The window of an alert. Main thread.
#pragma once

#include "panels/alert_content.h"
#include "panels/widget_panel.h"

@interface AlertPanel : WidgetPanel
// Shows the alert until a button is hit, and returns the button's item. Escape and the window's
// close button hit the cancel button or, without one, the default button. Returns 0 when somebody
// else ended the modal session.
+ (int)runWithWords:(const AlertWords&)words;
// The alert's message and explanation.
- (NSString*)text;
@end
