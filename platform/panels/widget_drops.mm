#include "panels/widget_view.h"

@implementation WidgetView (Drops)

- (void)setDropListener:(const std::function<void(const std::vector<std::string>&)>&)listener {
    delete _dropped;
    _dropped = new std::function<void(const std::vector<std::string>&)>(listener);
    [self registerForDraggedTypes:@[ NSFilenamesPboardType ]];
}

- (void)showTakesDrop:(bool)takes {
    _state.takes_drop = takes;
    [self setNeedsDisplay:YES];
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)drag {
    (void)drag;
    [self showTakesDrop:true];
    return NSDragOperationCopy;
}

- (void)draggingExited:(id<NSDraggingInfo>)drag {
    (void)drag;
    [self showTakesDrop:false];
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)drag {
    return [self draggingEntered:drag];
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)drag {
    (void)drag;
    return YES;
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)drag {
    [self showTakesDrop:false];
    NSArray* names = [[drag draggingPasteboard] propertyListForType:NSFilenamesPboardType];
    std::vector<std::string> paths;
    for (NSString* name in names) paths.push_back([name UTF8String] ?: "");
    if (paths.empty()) return NO;
    // Calls a copy, as the call may set another listener.
    const auto dropped = *_dropped;
    dropped(paths);
    return YES;
}

@end
