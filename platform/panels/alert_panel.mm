#include "panels/alert_panel.h"

#include <memory>

#include "look/bitmaps.h"
#include "x11/screens.h"

// The whole content: it draws the alert, and knows which button mouse and keys mean.
@interface AlertView : NSView {
  @private
    const alert_layout_t* _layout;  // outlives the panel's run
    alert_state_t _state;
    BOOL _isPressing;
}
- (instancetype)initWithLayout:(const alert_layout_t*)layout;
- (void)hit:(int)item;
@end

namespace {

point_t point_of(NSView* view, NSEvent* event) {
    const NSPoint point = [view convertPoint:[event locationInWindow] fromView:nil];
    return {static_cast<int>(point.x), static_cast<int>(point.y)};
}

int item_at(const alert_layout_t& layout, point_t point) {
    const auto* button = layout.button_at(point);
    return button ? button->item : 0;
}

}  // namespace

@implementation AlertView

- (instancetype)initWithLayout:(const alert_layout_t*)layout {
    if (!(self = [super initWithFrame:NSMakeRect(0, 0, layout->width(), layout->height())])) {
        return nil;
    }
    _layout = layout;
    return self;
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
    draw_through_bitmap([self bounds],
                        [self](cairo_t* cairo) { paint_alert(cairo, *_layout, _state); });
}

- (void)show:(alert_state_t)state {
    const alert_state_t& now = _state;
    if (now.hovered == state.hovered && now.pressed == state.pressed &&
        now.focused == state.focused) {
        return;
    }
    _state = state;
    [self setNeedsDisplay:YES];
}

- (void)mouseMoved:(NSEvent*)event {
    alert_state_t state = _state;
    state.hovered = item_at(*_layout, point_of(self, event));
    [self show:state];
}

- (void)mouseDown:(NSEvent*)event {
    alert_state_t state = _state;
    state.pressed = state.hovered = item_at(*_layout, point_of(self, event));
    _isPressing = state.pressed != 0;
    [self show:state];
}

- (void)mouseDragged:(NSEvent*)event {
    if (!_isPressing) return;
    alert_state_t state = _state;
    const int item = item_at(*_layout, point_of(self, event));
    // `hovered` keeps the button that the press began on.
    state.pressed = item == state.hovered ? item : 0;
    [self show:state];
}

- (void)mouseUp:(NSEvent*)event {
    if (!_isPressing) return;
    _isPressing = NO;
    const int began = _state.hovered, ended = item_at(*_layout, point_of(self, event));
    alert_state_t state = _state;
    state.pressed = 0;
    state.hovered = ended;
    [self show:state];
    if (began == ended) [self hit:ended];
}

- (void)keyDown:(NSEvent*)event {
    NSString* characters = [event charactersIgnoringModifiers];
    switch ([characters length] ? [characters characterAtIndex:0] : 0) {
        case NSCarriageReturnCharacter:
        case NSNewlineCharacter:
        case NSEnterCharacter:
            return [self hit:_layout->default_item()];
        case 0x1B:
            return [(DialogPanel*)[self window] cancelDialog];
        case ' ':
            return [self hit:_state.focused];
        case NSTabCharacter:
        case NSLeftArrowFunctionKey:
            return [self moveFocusBy:[event modifierFlags] & NSShiftKeyMask ? -1 : 1];
        case NSBackTabCharacter:
        case NSRightArrowFunctionKey:
            return [self moveFocusBy:-1];
        default:
            break;
    }
}

// Buttons follow each other from the right.
- (void)moveFocusBy:(int)step {
    const auto& buttons = _layout->buttons();
    const int count = static_cast<int>(buttons.size());
    alert_state_t state = _state;
    int index = step > 0 ? -1 : 0;
    for (int i = 0; i < count; i++) {
        if (buttons[i].item == state.focused) index = i;
    }
    state.focused = buttons[(index + step + count) % count].item;
    [self show:state];
}

// 0 is no button.
- (void)hit:(int)item {
    if (item) [NSApp stopModalWithCode:item];
}

@end

@implementation AlertPanel

+ (int)runWithWords:(const alert_words_t&)words {
    const alert_layout_t layout(words, menu_look(nil, server_resources()));
    AlertPanel* panel = [[self alloc] initWithLayout:&layout words:&words];
    const NSInteger item = [panel runModal];
    [panel release];
    return item > 0 ? static_cast<int>(item) : 0;
}

- (instancetype)initWithLayout:(const alert_layout_t*)layout words:(const alert_words_t*)words {
    AlertView* view = [[[AlertView alloc] initWithLayout:layout] autorelease];
    NSString* title = [NSString stringWithUTF8String:words->message.c_str()];
    if (!(self = [super initWithView:view title:title ?: @""])) return nil;
    _layout = layout;
    _words = words;
    [self setLevel:NSModalPanelWindowLevel];
    return self;
}

// The default button is the one that may be hit without having read anything.
- (void)cancelDialog {
    const int item = _words->cancel_item ? _words->cancel_item : _words->default_item;
    [(AlertView*)[self contentView] hit:item];
}

- (NSString*)text {
    const std::string text = _words->message + "\n" + _words->explanation;
    return [NSString stringWithUTF8String:text.c_str()];
}

- (point_t)middleOfItem:(int)item {
    for (const auto& button : _layout->buttons()) {
        if (button.item != item) continue;
        const NSPoint middle = NSMakePoint(button.area.left + button.area.width / 2,
                                           button.area.top + button.area.height / 2);
        const NSPoint base = [[self contentView] convertPoint:middle toView:nil];
        return server_point([self convertBaseToScreen:base]);
    }
    return {-1, -1};
}

@end
