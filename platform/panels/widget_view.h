// The content view of a panel. It draws the widgets, and finds the widget that mouse or keys hit.
// Tab and the arrow keys move the focus along the widgets; Space hits the one with the focus, and
// so does Return where no button is the default. Within a group of rows the arrow keys hit the row
// that they come to. In a field keys write; the field is hit when its text has changed and Return
// is pressed or the focus leaves it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

#include "look/menu_image.h"
#include "panels/panel_paint.h"
#include "panels/text_edit.h"

@interface WidgetView : NSView {
  @private
    PanelContent* _content;  // owned, as the next two
    std::function<void(int)>* _hit;
    ImageCache* _images;
    PanelState _state;
    int _pressedItem;      // where the press began; 0 while no mouse button is down
    std::string* _before;  // owned: the text of the field with the focus when it got the focus
    std::function<void(const std::vector<std::string>&)>* _dropped;  // owned
}
// `hit` is called with the item of a widget.
- (instancetype)initWithContent:(const PanelContent&)content
                            hit:(const std::function<void(int)>&)hit;
// The caller may change the content, and then sends `changed`.
- (PanelContent&)content;
- (PanelState)state;
// Shows other widgets. The focus stays with its item, or goes to the next one that can be hit.
- (void)setContent:(const PanelContent&)content;
// Draws the content anew, and tells those who watch.
- (void)changed;
// Gives the widget the focus; 0 for none.
- (void)focusItem:(int)item;
// Does nothing for 0 and for a disabled widget.
- (void)hit:(int)item;
@end

@interface WidgetView (Drops)
- (void)setDropListener:(const std::function<void(const std::vector<std::string>&)>&)listener;
@end

@interface WidgetView (Keys)
// Gives a field the focus and this text, with the caret between characters.
- (void)write:(const TextEdit&)written intoItem:(int)item;
- (void)keyDown:(NSEvent*)event;
@end
