#include "operations_ui/parts_panel.h"

#include <memory>

#include "look/bitmaps.h"
#include "operations_ui/parts_paint.h"
#include "x11/screens.h"

using operations::Part;
using operations::PartKind;

namespace {

// What a view keeps that is no object.
struct Content {
    std::vector<Part> parts;
    operations::Hit hit;
    menu_look_t look;
    image_cache_t images;
    const Part *hovered = nullptr, *pressed = nullptr, *focused = nullptr;
};

bool can_be_hit(const Part& part) {
    return (part.kind == PartKind::Button || part.kind == PartKind::Check) && !part.disabled;
}

}  // namespace

@interface PartsView : NSView {
  @public
    std::unique_ptr<Content>* _content;
}
@end

@implementation PartsView

- (void)dealloc {
    delete _content;
    [super dealloc];
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
    Content& content = **_content;
    const NSSize size = [self bounds].size;
    const operations::PartsScene scene = {
        &content.parts,  content.look,    &content.images, {(int)size.width, (int)size.height},
        content.hovered, content.pressed, content.focused};
    draw_through_bitmap([self bounds],
                        [&](cairo_t* cairo) { operations::PaintParts(cairo, scene); });
}

- (const Part*)partAt:(NSEvent*)event {
    const NSPoint place = [self convertPoint:[event locationInWindow] fromView:nil];
    const point_t point = {(int)place.x, (int)place.y};
    for (const Part& part : (*_content)->parts) {
        if (can_be_hit(part) && operations::AreaOf((*_content)->look, part).contains(point)) {
            return &part;
        }
    }
    return nullptr;
}

- (void)setHovered:(const Part*)hovered pressed:(const Part*)pressed {
    Content& content = **_content;
    if (content.hovered == hovered && content.pressed == pressed) return;
    content.hovered = hovered;
    content.pressed = pressed;
    [self setNeedsDisplay:YES];
}

- (void)mouseMoved:(NSEvent*)event {
    [self setHovered:[self partAt:event] pressed:nullptr];
}

- (void)mouseDown:(NSEvent*)event {
    const Part* part = [self partAt:event];
    [self setHovered:part pressed:part];
}

- (void)mouseUp:(NSEvent*)event {
    const Part *part = [self partAt:event], *pressed = (*_content)->pressed;
    [self setHovered:part pressed:nullptr];
    if (part && part == pressed) [self hit:*part];
}

// To the next or, backwards, the one before; round and round.
- (void)moveFocusBy:(ptrdiff_t)step {
    Content& content = **_content;
    const auto count = static_cast<ptrdiff_t>(content.parts.size());
    ptrdiff_t index = content.focused ? content.focused - content.parts.data() : step > 0 ? -1 : 0;
    for (ptrdiff_t turn = 0; turn < count; turn++) {
        index = (index + step + count) % count;
        if (!can_be_hit(content.parts[static_cast<size_t>(index)])) continue;
        content.focused = &content.parts[static_cast<size_t>(index)];
        break;
    }
    [self setNeedsDisplay:YES];
}

// Whether the key is one that leads the focus.
- (bool)isFocusKey:(unichar)key of:(NSEvent*)event {
    switch (key) {
        case NSTabCharacter:
            [self moveFocusBy:[event modifierFlags] & NSShiftKeyMask ? -1 : 1];
            return true;
        case NSLeftArrowFunctionKey:
        case NSDownArrowFunctionKey:
            [self moveFocusBy:1];
            return true;
        case NSBackTabCharacter:
        case NSRightArrowFunctionKey:
        case NSUpArrowFunctionKey:
            [self moveFocusBy:-1];
            return true;
        default:
            return false;
    }
}

- (void)keyDown:(NSEvent*)event {
    NSString* characters = [event charactersIgnoringModifiers];
    unichar key = [characters length] ? [characters characterAtIndex:0] : 0;
    if ([self isFocusKey:key of:event]) return;
    const Part* focused = (*_content)->focused;
    if (key == ' ' && focused && can_be_hit(*focused)) return [self hit:*focused];
    if (key != 0) [self hitKey:key];
}

- (void)hitKey:(unichar)key {
    const bool is_return =
        key == NSCarriageReturnCharacter || key == NSNewlineCharacter || key == NSEnterCharacter;
    for (const Part& part : (*_content)->parts) {
        if (!can_be_hit(part)) continue;
        if ((is_return && part.chief) || part.key == key) return [self hit:part];
    }
}

- (void)hit:(const Part&)part {
    // A copy: what is hit may end the panel.
    const operations::Hit hit = (*_content)->hit;
    hit(part.item);
}

@end

@implementation PartsPanel

- (instancetype)initWithTitle:(NSString*)title
                        width:(double)width
                       height:(double)height
                        parts:(const std::vector<Part>&)parts
                          hit:(const operations::Hit&)hit {
    auto content = std::make_unique<Content>();
    content->parts = parts;
    content->hit = hit;
    content->look = menu_look(nil, server_resources());
    const NSRect frame = NSMakeRect(0, 0, operations::PixelsOf(content->look, width),
                                    operations::PixelsOf(content->look, height));
    PartsView* view = [[[PartsView alloc] initWithFrame:frame] autorelease];
    view->_content = new std::unique_ptr<Content>(std::move(content));
    return [super initWithView:view title:title];
}

- (Content&)content {
    return **((PartsView*)[self contentView])->_content;
}

- (std::vector<Part>&)parts {
    return [self content].parts;
}

- (Part*)partOfItem:(int)item {
    for (Part& part : [self content].parts) {
        if (part.item == item) return &part;
    }
    return nullptr;
}

- (void)partsChanged {
    [[self contentView] setNeedsDisplay:YES];
}

- (void)cancelDialog {
    [(PartsView*)[self contentView] hitKey:operations::cancel_key];
}

// What only tells of progress can be ended while something else asks. A question below another one
// waits.
- (BOOL)worksWhenModal {
    return !_isModal;
}

- (NSInteger)runModal {
    _isModal = YES;
    const NSInteger code = [super runModal];
    _isModal = NO;
    return code;
}

- (NSRect)areaOfPart:(const Part&)part {
    const area_t area = operations::AreaOf([self content].look, part);
    return [[self contentView] convertRect:NSMakeRect(area.left, area.top, area.width, area.height)
                                    toView:nil];
}

@end
