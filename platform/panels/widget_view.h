// The content view of a panel. It draws the widgets, and finds the widget that mouse or keys hit.
// Tab and the arrow keys move the focus along the buttons and check boxes; Space hits the one with
// the focus. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>

#include "look/menu_image.h"
#include "panels/panel_paint.h"

@interface WidgetView : NSView {
  @private
    PanelContent* _content;  // owned, as the next two
    std::function<void(int)>* _hit;
    ImageCache* _images;
    PanelState _state;
    int _pressedItem;  // where the press began; 0 while no mouse button is down
}
// `hit` is called with the item of a button or check box.
- (instancetype)initWithContent:(const PanelContent&)content
                            hit:(const std::function<void(int)>&)hit;
// The caller may change the content, and then sets that the view needs display.
- (PanelContent&)content;
// Does nothing for 0 and for a disabled widget.
- (void)hit:(int)item;
@end
