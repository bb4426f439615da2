#include "panels/widget_view.h"

#include <algorithm>

#include "look/bitmaps.h"
#include "panels/shown_panel.h"
#include "panels/widget_paint.h"

@implementation WidgetView

- (instancetype)initWithContent:(const PanelContent&)content
                            hit:(const std::function<void(int)>&)hit {
    self = [super initWithFrame:NSMakeRect(0, 0, content.size.width, content.size.height)];
    if (!self) return nil;
    _content = new PanelContent(content);
    if (content.look.mirrored) _content->mirror();
    _hit = new std::function<void(int)>(hit);
    _images = new ImageCache;
    _before = new std::string;
    return self;
}

- (void)dealloc {
    delete _content;
    delete _hit;
    delete _images;
    delete _before;
    delete _dropped;
    [super dealloc];
}

- (PanelContent&)content {
    return *_content;
}

- (PanelState)state {
    return _state;
}

- (void)changed {
    [self setNeedsDisplay:YES];
    tell_panel_listeners();
}

- (BOOL)isFlipped {
    return YES;
}

- (BOOL)isOpaque {
    return YES;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    (void)event;
    return YES;
}

- (void)drawRect:(NSRect)rect {
    (void)rect;
    const PanelScene scene = {_content, _state, _images};
    draw_through_bitmap([self bounds], [&](cairo_t* cairo) { paint_panel(cairo, scene); });
}

- (void)show:(const PanelState&)state {
    if (_state == state) return;
    _state = state;
    [self changed];
}

- (void)showHovered:(int)hovered pressed:(int)pressed {
    PanelState state = _state;
    state.hovered = hovered;
    state.pressed = pressed;
    [self show:state];
}

- (void)setContent:(const PanelContent&)content {
    *_content = content;
    if (content.look.mirrored) _content->mirror();
    const Widget* focused = _state.focused ? _content->widget(_state.focused) : nullptr;
    if (focused && !focused->can_be_hit()) {
        _state.focused = _content->item_beside(_state.focused, 1);
        focused = _content->widget(_state.focused);
    }
    if (!focused) _state.focused = 0;
    _state.caret = focused ? std::min(_state.caret, focused->text.size()) : 0;
    _state.anchor = focused ? std::min(_state.anchor, focused->text.size()) : 0;
    *_before = focused ? focused->text : "";
    [self changed];
}

- (void)focusItem:(int)item {
    const int left = _state.focused;
    const Widget* widget = item ? _content->widget(item) : nullptr;
    if (item == left || (item && !(widget && widget->can_be_hit()))) return;
    const Widget* from = left ? _content->widget(left) : nullptr;
    const bool has_changed = from && from->kind == WidgetKind::field && from->text != *_before;
    *_before = widget ? widget->text : "";
    PanelState state = _state;
    state.focused = item;
    state.caret = state.anchor = widget ? widget->text.size() : 0;
    [self show:state];
    if (has_changed) [self hit:left];
}

- (int)itemAt:(NSEvent*)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    return _content->item_at({static_cast<int>(point.x), static_cast<int>(point.y)});
}

- (void)mouseMoved:(NSEvent*)event {
    _pressedItem = 0;
    [self showHovered:[self itemAt:event] pressed:0];
}

// The item with the focus, unless it is a field: a click beside a field ends its editing.
- (int)focusWithoutField {
    const Widget* widget = _state.focused ? _content->widget(_state.focused) : nullptr;
    return widget && widget->kind == WidgetKind::field ? 0 : _state.focused;
}

// In the field with the focus.
- (void)putCaretAt:(NSEvent*)event selects:(BOOL)selects {
    const int x = static_cast<int>([self convertPoint:[event locationInWindow] fromView:nil].x);
    PanelState state = _state;
    state.caret = caret_at(*_content, *_content->widget(state.focused), state.caret, x);
    if (!selects) state.anchor = state.caret;
    [self show:state];
}

- (void)selectAllOf:(const Widget&)field {
    PanelState state = _state;
    state.anchor = 0;
    state.caret = field.text.size();
    [self show:state];
}

- (void)mouseDown:(NSEvent*)event {
    const int item = [self itemAt:event];
    const Widget* widget = item ? _content->widget(item) : nullptr;
    const bool is_field = widget && widget->kind == WidgetKind::field;
    const bool takes_focus = is_field || (widget && widget->group);
    // A field that loses the focus may bring other widgets.
    [self focusItem:takes_focus ? item : [self focusWithoutField]];
    widget = item ? _content->widget(item) : nullptr;
    if (is_field && widget) {
        const bool selects = [event modifierFlags] & NSShiftKeyMask;
        if ([event clickCount] > 1) {
            [self selectAllOf:*widget];
        } else {
            [self putCaretAt:event selects:selects];
        }
    }
    _pressedItem = item;
    [self showHovered:item pressed:item];
}

- (void)mouseDragged:(NSEvent*)event {
    const Widget* pressed = _pressedItem ? _content->widget(_pressedItem) : nullptr;
    if (pressed && pressed->kind == WidgetKind::field && _pressedItem == _state.focused) {
        return [self putCaretAt:event selects:YES];
    }
    const bool is_inside = [self itemAt:event] == _pressedItem;
    [self showHovered:_pressedItem pressed:is_inside ? _pressedItem : 0];
}

- (void)mouseUp:(NSEvent*)event {
    const int began = _pressedItem, ended = [self itemAt:event];
    _pressedItem = 0;
    [self showHovered:ended pressed:0];
    const Widget* widget = ended ? _content->widget(ended) : nullptr;
    const bool is_field = widget && widget->kind == WidgetKind::field;
    if (began == ended && !is_field) [self hit:ended];
}

- (void)hit:(int)item {
    const Widget* widget = item ? _content->widget(item) : nullptr;
    if (!item || (widget && widget->disabled)) return;
    // Calls a copy, as the call may end the panel.
    const std::function<void(int)> hit = *_hit;
    hit(item);
}

@end
