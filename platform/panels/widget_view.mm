#include "panels/widget_view.h"

#include "look/bitmaps.h"

namespace {

unichar mirrored_arrow(unichar key) {
    if (key == NSLeftArrowFunctionKey) return NSRightArrowFunctionKey;
    return key == NSRightArrowFunctionKey ? NSLeftArrowFunctionKey : key;
}

bool is_return(unichar key) {
    return key == NSCarriageReturnCharacter || key == NSNewlineCharacter || key == NSEnterCharacter;
}

// Where the key leads the focus: to the next widget (1) or the one before (-1). 0: nowhere.
int focus_step(unichar key, NSEvent* event, bool mirrored) {
    switch (mirrored ? mirrored_arrow(key) : key) {
        case NSTabCharacter:
            return [event modifierFlags] & NSShiftKeyMask ? -1 : 1;
        case NSLeftArrowFunctionKey:  // buttons follow each other from the right
        case NSDownArrowFunctionKey:
            return 1;
        case NSBackTabCharacter:
        case NSRightArrowFunctionKey:
        case NSUpArrowFunctionKey:
            return -1;
        default:
            return 0;
    }
}

}  // namespace

@implementation WidgetView

- (instancetype)initWithContent:(const PanelContent&)content
                            hit:(const std::function<void(int)>&)hit {
    self = [super initWithFrame:NSMakeRect(0, 0, content.size.width, content.size.height)];
    if (!self) return nil;
    _content = new PanelContent(content);
    if (content.look.mirrored) _content->mirror();
    _hit = new std::function<void(int)>(hit);
    _images = new ImageCache;
    return self;
}

- (void)dealloc {
    delete _content;
    delete _hit;
    delete _images;
    [super dealloc];
}

- (PanelContent&)content {
    return *_content;
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
    [self setNeedsDisplay:YES];
}

- (void)showHovered:(int)hovered pressed:(int)pressed {
    [self show:{hovered, pressed, _state.focused}];
}

- (int)itemAt:(NSEvent*)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    return _content->item_at({static_cast<int>(point.x), static_cast<int>(point.y)});
}

- (void)mouseMoved:(NSEvent*)event {
    _pressedItem = 0;
    [self showHovered:[self itemAt:event] pressed:0];
}

- (void)mouseDown:(NSEvent*)event {
    _pressedItem = [self itemAt:event];
    [self showHovered:_pressedItem pressed:_pressedItem];
}

- (void)mouseDragged:(NSEvent*)event {
    const bool is_inside = [self itemAt:event] == _pressedItem;
    [self showHovered:_pressedItem pressed:is_inside ? _pressedItem : 0];
}

- (void)mouseUp:(NSEvent*)event {
    const int began = _pressedItem, ended = [self itemAt:event];
    _pressedItem = 0;
    [self showHovered:ended pressed:0];
    if (began == ended) [self hit:ended];
}

- (void)keyDown:(NSEvent*)event {
    NSString* characters = [event charactersIgnoringModifiers];
    if (![characters length]) return;
    const unichar key = [characters characterAtIndex:0];
    if (const int step = focus_step(key, event, _content->look.mirrored)) {
        return [self
            show:{_state.hovered, _state.pressed, _content->item_beside(_state.focused, step)}];
    }
    if (key == 0x1B) return [self hit:_content->cancel_item];
    if (is_return(key)) return [self hit:_content->default_item];
    if (key == ' ') return [self hit:_state.focused];
    for (const Widget& widget : _content->widgets) {
        if (widget.key == key && widget.can_be_hit()) return [self hit:widget.item];
    }
}

- (void)hit:(int)item {
    const Widget* widget = item ? _content->widget(item) : nullptr;
    if (!item || (widget && widget->disabled)) return;
    // Calls a copy, as the call may end the panel.
    const std::function<void(int)> hit = *_hit;
    hit(item);
}

@end
