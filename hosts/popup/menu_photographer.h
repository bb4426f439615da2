// Saves a picture of a menu that the presenter shows. Main thread.
#pragma once

#include <host/menu_tracking.h>

#include <string>
#include <vector>

// Waits, while the menu is tracked, until it is open; opens submenus by their titles, lets the
// presenter draw them, saves the picture and closes the menu.
@interface MenuPhotographer : NSObject {
  @private
    std::string* _file;
    std::vector<std::string>* _titles;
    std::string* _problem;
    NSTimer* _timer;
    size_t _opened;
}
- (instancetype)initWithFile:(const std::string&)file
                  openTitles:(const std::vector<std::string>&)titles;
// Begins to wait; sent right before the popup. Its opposite is sent right after.
- (void)waitForMenu;
- (void)stop;
// In one line, why there is no picture; empty when it was saved.
- (const std::string&)problem;
@end
