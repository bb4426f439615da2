// Saves a picture of a menu that the presenter shows. Main thread.
#pragma once

#include <host/menu_tracking.h>

#include <string>
#include <vector>

// Waits during tracking until the menu is open; opens submenus by their titles, lets the presenter
// draw them, saves the picture and closes the menu.
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
// Begins to wait; called right before the popup. -stop is called right after it.
- (void)waitForMenu;
- (void)stop;
// Why there is no picture, in one line; empty when it was saved.
- (const std::string&)problem;
@end
