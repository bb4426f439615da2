// A window at the upper left of the screen that records the pointer events it gets. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

@interface PointerWindow : NSObject {
  @private
    NSWindow* _window;
    std::string* _log;
}
// 400 x 300 pixels at (100, 100) from the upper left; on the screen when it returns.
- (instancetype)init;
- (NSWindow*)window;
// "down 120 130, up 120 130, ...": points from the upper left of the screen; then begins anew.
- (std::string)takeLog;
- (const std::string&)log;
@end
