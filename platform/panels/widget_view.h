// The content of a panel: it draws the widgets, and knows which of them mouse and keys mean. Tab
// and the arrows lead a focus along the buttons and check boxes; Space hits the one that has it.
// Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>

#include "look/menu_image.h"
#include "panels/panel_paint.h"

@interface WidgetView : NSView {
  @private
    panel_content_t* _content;  // owned, as the next two
    std::function<void(int)>* _hit;
    image_cache_t* _images;
    panel_state_t _state;
    int _pressedItem;  // the one that the press began on; 0 while no button of the mouse is down
}
// `hit` is sent the item of a button or check box.
- (instancetype)initWithContent:(const panel_content_t&)content
                            hit:(const std::function<void(int)>&)hit;
// May be changed; then the view needs display.
- (panel_content_t&)content;
// Does nothing for 0 and for a disabled widget.
- (void)hit:(int)item;
@end
