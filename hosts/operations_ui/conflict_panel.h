// The panel that asks what to do about a name that is taken. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include "operations/request.h"

@interface ConflictPanel : NSObject {
  @private
    NSPanel* _panel;
    NSButton* _applyToAll;
}
// Shows it and returns the answer; Return skips, Escape stops.
- (operations::Answer)answerTo:(const operations::Conflict&)conflict;
@end
