// A small window of widgets, in the look of the menus: light or dark as they are, and sharp at
// every scale. The alert and the windows of file operations are made of it. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

#include "panels/dialog_panel.h"
#include "panels/panel_content.h"
#include "panels/text_edit.h"

@interface WidgetPanel : DialogPanel {
  @private
    BOOL _isModal;
    unsigned _number;
}
// `hit` is called with the item of a widget.
- (instancetype)initWithTitle:(NSString*)title
                      content:(const PanelContent&)content
                          hit:(const std::function<void(int)>&)hit;
// The caller may change the widgets, but must not add or remove any, and then sends
// `widgetsChanged`; or it sets another content.
- (PanelContent&)content;
// No other panel has had it.
- (unsigned)number;
// The item of the widget with the focus; 0 for none.
- (int)focusedItem;
// Where the next character goes in a field with the focus, in bytes.
- (size_t)caret;
// The other end of what is selected there; the caret when nothing is.
- (size_t)anchor;
// Gives a field the focus and this text, as the user's keys do.
- (void)write:(const TextEdit&)written intoItem:(int)item;
- (void)widgetsChanged;
// Shows other widgets at the same size.
- (void)setContent:(const PanelContent&)content;
- (void)focusItem:(int)item;
// Hits the widget when the run loop comes to it, as the hit may open another window.
- (void)hitItemSoon:(int)item;
// From now on files may be dropped on the panel; the listener gets their paths.
- (void)setDropListener:(const std::function<void(const std::vector<std::string>&)>&)listener;
// The place of a widget, in pixels of the server.
- (Area)placeOfWidget:(const Widget&)widget;
// The place of a part of a field's text there, and the byte of the text at a point.
- (Area)placeOfText:(const Widget&)field from:(size_t)begin to:(size_t)end;
- (size_t)textOf:(const Widget&)field at:(MenuPoint)point;
// The middle of a widget there; {-1, -1} without such a widget.
- (MenuPoint)middleOfItem:(int)item;
@end
