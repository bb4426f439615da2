#include "panels/widget_panel.h"

#include <host/process.h>

#include <algorithm>
#include <cstdlib>

#include "panels/shown_panel.h"
#include "panels/widget_paint.h"
#include "panels/widget_view.h"
#include "x11/screens.h"

@implementation WidgetPanel

- (instancetype)initWithTitle:(NSString*)title
                      content:(const PanelContent&)content
                          hit:(const std::function<void(int)>&)hit {
    static unsigned last_number;
    WidgetView* view = [[[WidgetView alloc] initWithContent:content hit:hit] autorelease];
    if ((self = [super initWithView:view title:title])) _number = ++last_number;
    return self;
}

- (unsigned)number {
    return _number;
}

- (int)focusedItem {
    return [[self widgetView] state].focused;
}

- (size_t)caret {
    return [[self widgetView] state].caret;
}

- (size_t)anchor {
    return [[self widgetView] state].anchor;
}

- (WidgetView*)widgetView {
    return (WidgetView*)[self contentView];
}

- (PanelContent&)content {
    return [[self widgetView] content];
}

- (void)write:(const TextEdit&)written intoItem:(int)item {
    [[self widgetView] write:written intoItem:item];
}

- (void)widgetsChanged {
    [[self widgetView] changed];
}

- (void)setContent:(const PanelContent&)content {
    [[self widgetView] setContent:content];
}

- (void)focusItem:(int)item {
    [[self widgetView] focusItem:item];
}

- (void)hitItemSoon:(int)item {
    NSArray* modes = @[ NSModalPanelRunLoopMode, NSDefaultRunLoopMode ];
    [self performSelector:@selector(hitNumber:) withObject:@(item) afterDelay:0 inModes:modes];
}

- (void)hitNumber:(NSNumber*)item {
    [[self widgetView] hit:[item intValue]];
    // A modal session that was ended looks so only after its next event.
    wake_main_loop();
}

- (void)setDropListener:(const std::function<void(const std::vector<std::string>&)>&)listener {
    [[self widgetView] setDropListener:listener];
}

- (void)cancelDialog {
    [[self widgetView] hit:[self content].cancel_item];
}

// A panel that only shows progress can be closed while another panel asks something. A question
// below another question waits.
- (BOOL)worksWhenModal {
    return !_isModal;
}

- (void)dealloc {
    note_telling_panel(self, false);
    [super dealloc];
}

- (void)orderFrontRegardless {
    [super orderFrontRegardless];
    if (!_isModal) note_telling_panel(self, true);
}

- (void)orderOut:(id)sender {
    [super orderOut:sender];
    note_telling_panel(self, false);
}

- (NSInteger)runModal {
    const PanelRun run(self);
    _isModal = YES;
    const NSInteger code = [super runModal];
    _isModal = NO;
    return code;
}

- (Area)placeOfWidget:(const Widget&)widget {
    const Area& area = widget.area;
    const NSPoint corner = [[self contentView] convertPoint:NSMakePoint(area.left, area.top)
                                                     toView:nil];
    const MenuPoint place = server_point([self convertBaseToScreen:corner]);
    return {place.x, place.y, area.width, area.height};
}

- (size_t)caretOf:(const Widget&)field {
    return field.item == [self focusedItem] ? [self caret] : 0;
}

- (Area)placeOfText:(const Widget&)field from:(size_t)begin to:(size_t)end {
    const size_t caret = [self caretOf:field];
    const int first = text_place([self content], field, caret, begin);
    const int last = text_place([self content], field, caret, end);
    Area area = [self placeOfWidget:field];
    area.left += std::min(first, last) - field.area.left;
    area.width = std::abs(last - first);
    return area;
}

- (size_t)textOf:(const Widget&)field at:(MenuPoint)point {
    const int x = point.x - [self placeOfWidget:field].left + field.area.left;
    return caret_at([self content], field, [self caretOf:field], x);
}

- (MenuPoint)middleOfItem:(int)item {
    const Widget* widget = [self content].widget(item);
    if (!widget) return {-1, -1};
    const Area area = [self placeOfWidget:*widget];
    return {area.left + area.width / 2, area.top + area.height / 2};
}

@end
