// A window at the upper left of the screen that records the pointer events it gets, and shows the
// menu of its view, if that has one. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

@interface PointerWindow : NSObject {
  @private
    NSWindow* _window;
    std::string* _log;
}
// 400 x 300 pixels at (100, 100) from the upper left; the window is on the screen when the call
// returns.
- (instancetype)init;
- (NSWindow*)window;
// The events so far, as "down 120 130, up 120 130, ..." with points from the upper left of the
// screen. The record then starts again.
- (std::string)takeLog;
- (const std::string&)log;
@end
