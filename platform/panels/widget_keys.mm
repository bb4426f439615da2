#include "panels/widget_view.h"

#include <ctype.h>

#include <algorithm>

#include "panels/copied_text.h"
#include "panels/text_edit.h"

namespace {

constexpr unichar escape_key = 0x1B, erase_key = 0x7F, backspace_key = 0x08;

bool is_return(unichar key) {
    return key == NSCarriageReturnCharacter || key == NSNewlineCharacter || key == NSEnterCharacter;
}

unichar mirrored_arrow(unichar key) {
    if (key == NSLeftArrowFunctionKey) return NSRightArrowFunctionKey;
    return key == NSRightArrowFunctionKey ? NSLeftArrowFunctionKey : key;
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

bool is_tab(unichar key) { return key == NSTabCharacter || key == NSBackTabCharacter; }

// Whether the key, pressed with Control, is one of those that select, cut, copy and paste.
bool edit_with_control(TextEdit* edit, int key) {
    switch (key) {
        case 'a':
            return edit->select_all(), true;
        case 'c':
        case 'x':
            if (edit->caret == edit->anchor) return true;
            copy_text(edit->selected());
            if (key == 'x') edit->remove_selected();
            return true;
        case 'v':
            return edit->insert(copied_text()), true;
        default:
            return false;
    }
}

// Whether the key belongs to the text of a field.
bool edit(TextEdit* edit, unichar key, NSEvent* event) {
    const bool has_control = [event modifierFlags] & NSControlKeyMask;
    const bool selects = [event modifierFlags] & NSShiftKeyMask;
    switch (key) {
        case erase_key:
        case backspace_key:
            return edit->remove_before(), true;
        case NSDeleteFunctionKey:
            return edit->remove_after(), true;
        case NSLeftArrowFunctionKey:
            return edit->go_back(selects), true;
        case NSRightArrowFunctionKey:
            return edit->go_on(selects), true;
        case NSHomeFunctionKey:
            return edit->go_to(0, selects), true;
        case NSEndFunctionKey:
            return edit->go_to(edit->text.size(), selects), true;
    }
    if (has_control) return edit_with_control(edit, key < 0x80 ? tolower(key) : key);
    const bool is_text =
        key >= ' ' && (key < 0xF700 || key > 0xF8FF) && !([event modifierFlags] & NSCommandKeyMask);
    if (is_text) edit->insert([[event characters] UTF8String] ?: "");
    return is_text;
}

}  // namespace

@implementation WidgetView (Keys)

- (Widget*)focusedWidget {
    return _state.focused ? _content->widget(_state.focused) : nullptr;
}

- (BOOL)writeKey:(unichar)key event:(NSEvent*)event {
    Widget* field = [self focusedWidget];
    if (!field || field->kind != WidgetKind::field) return NO;
    TextEdit written = {field->text, _state.caret, _state.anchor};
    if (!edit(&written, key, event)) return NO;
    [self write:written intoItem:field->item];
    return YES;
}

- (void)write:(const TextEdit&)written intoItem:(int)item {
    [self focusItem:item];
    Widget* field = [self focusedWidget];
    if (!field || field->item != item || field->kind != WidgetKind::field) return;
    field->text = written.text;
    _state.caret = std::min(written.caret, written.text.size());
    _state.anchor = std::min(written.anchor, written.text.size());
    [self changed];
}

// Along the rows of a group; NO if the focus is on no row, or its group ends here.
- (BOOL)moveAlongRows:(int)step {
    const int next = _content->row_beside(_state.focused, step);
    const Widget* row = [self focusedWidget];
    if (!row || !row->group) return NO;
    if (next == _state.focused) return YES;
    [self focusItem:next];
    [self hit:next];
    return YES;
}

- (void)pressReturn {
    if (_content->default_item) return [self hit:_content->default_item];
    const Widget* widget = [self focusedWidget];
    if (!widget) return;
    if (widget->kind == WidgetKind::field) *_before = widget->text;
    [self hit:_state.focused];
}

- (void)keyDown:(NSEvent*)event {
    NSString* characters = [event charactersIgnoringModifiers];
    if (![characters length]) return;
    const unichar key = [characters characterAtIndex:0];
    if (key == escape_key) return [self hit:_content->cancel_item];
    if (is_return(key)) return [self pressReturn];
    if ([self writeKey:key event:event]) return;
    if (const int step = focus_step(key, event, _content->look.mirrored)) {
        if (!is_tab(key) && [self moveAlongRows:step]) return;
        return [self focusItem:_content->item_beside(_state.focused, step)];
    }
    if (key == ' ') return [self hit:_state.focused];
    for (const Widget& widget : _content->widgets) {
        if (widget.key == key && widget.can_be_hit()) return [self hit:widget.item];
    }
}

@end
