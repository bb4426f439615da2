// A small file manager for desktop tests: one window, whose right-click pops up a contextual menu
// for a selection, filled by a menu delegate as a file manager fills its own. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>
#include <vector>

#include "finderkit/context_menu.h"

@interface FileWindow : NSObject {
  @private
    NSWindow* _window;
    TContextMenu* _menu;
    std::vector<std::string>* _files;
    std::vector<std::string>* _messages;
    int _popups;
}
- (instancetype)init;
// The selection of the next popup.
- (void)setFiles:(const std::vector<std::string>&)files;
// The menu of the popup now open, or of the last one.
- (TContextMenu*)menu;
// The number of popups that have ended.
- (int)popups;
// The delegate messages that reached the host since the last popup began, in order.
- (const std::vector<std::string>&)messages;
// Changes the menu as a file manager does when its folder changes under an open menu.
- (void)rebuildMenu;
@end

// The host's own items, in order.
std::vector<std::string> host_titles();
