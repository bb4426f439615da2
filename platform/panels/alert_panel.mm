#include "panels/alert_panel.h"

@implementation AlertPanel

+ (int)runWithWords:(const AlertWords&)words {
    NSString* title = [NSString stringWithUTF8String:words.message.c_str()];
    AlertPanel* panel =
        [[self alloc] initWithTitle:title ?: @""
                            content:alert_content(words)
                                hit:[](int item) { [NSApp stopModalWithCode:item]; }];
    [panel setLevel:NSModalPanelWindowLevel];
    const NSInteger item = [panel runModal];
    [panel release];
    return item > 0 ? static_cast<int>(item) : 0;
}

- (NSString*)text {
    NSMutableArray* lines = [NSMutableArray array];
    for (const Widget& widget : [self content].widgets) {
        if (widget.kind != WidgetKind::paragraph) continue;
        [lines addObject:[NSString stringWithUTF8String:widget.text.c_str()] ?: @""];
    }
    return [lines componentsJoinedByString:@"\n"];
}

@end
