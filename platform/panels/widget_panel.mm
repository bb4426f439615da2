#include "panels/widget_panel.h"

#include "panels/widget_view.h"
#include "x11/screens.h"

@implementation WidgetPanel

- (instancetype)initWithTitle:(NSString*)title
                      content:(const PanelContent&)content
                          hit:(const std::function<void(int)>&)hit {
    WidgetView* view = [[[WidgetView alloc] initWithContent:content hit:hit] autorelease];
    return [super initWithView:view title:title];
}

- (WidgetView*)widgetView {
    return (WidgetView*)[self contentView];
}

- (PanelContent&)content {
    return [[self widgetView] content];
}

- (void)widgetsChanged {
    [[self widgetView] setNeedsDisplay:YES];
}

- (void)setContent:(const PanelContent&)content {
    [[self widgetView] setContent:content];
}

- (void)focusItem:(int)item {
    [[self widgetView] focusItem:item];
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

- (NSInteger)runModal {
    _isModal = YES;
    const NSInteger code = [super runModal];
    _isModal = NO;
    return code;
}

- (MenuPoint)middleOfItem:(int)item {
    const Widget* widget = [self content].widget(item);
    if (!widget) return {-1, -1};
    const Area& area = widget->area;
    const NSPoint middle = NSMakePoint(area.left + area.width / 2, area.top + area.height / 2);
    const NSPoint base = [[self contentView] convertPoint:middle toView:nil];
    return server_point([self convertBaseToScreen:base]);
}

@end
