#include "platform/events/pointer_window.h"

#include <utility>

@interface PointerView : NSView {
  @public
    std::string* log;
}
@end

@implementation PointerView

- (void)note:(const char*)what event:(NSEvent*)event {
    const NSPoint at = [[self window] convertBaseToScreen:[event locationInWindow]];
    const double height = NSHeight([[[NSScreen screens] objectAtIndex:0] frame]);
    if (!log->empty()) *log += ", ";
    *log += std::string(what) + " " + std::to_string(static_cast<int>(at.x)) + " " +
            std::to_string(static_cast<int>(height - at.y));
}

- (void)mouseDown:(NSEvent*)event {
    [self note:"down" event:event];
}
- (void)mouseUp:(NSEvent*)event {
    [self note:"up" event:event];
}
- (void)rightMouseDown:(NSEvent*)event {
    [self note:"right down" event:event];
    if ([self menu]) [NSMenu popUpContextMenu:[self menu] withEvent:event forView:self];
}
- (void)rightMouseUp:(NSEvent*)event {
    [self note:"right up" event:event];
}
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    (void)event;
    return YES;
}

@end

@implementation PointerWindow

- (instancetype)init {
    if (!(self = [super init])) return nil;
    const double height = NSHeight([[[NSScreen screens] objectAtIndex:0] frame]);
    _log = new std::string;
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, height - 400, 400, 300)
                                          styleMask:NSBorderlessWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [_window setReleasedWhenClosed:NO];
    PointerView* view = [[PointerView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)];
    view->log = _log;
    [_window setContentView:view];
    [view release];
    [_window makeKeyAndOrderFront:nil];
    return self;
}

- (void)dealloc {
    [_window close];
    [_window release];
    delete _log;
    [super dealloc];
}

- (NSWindow*)window {
    return _window;
}

- (std::string)takeLog {
    return std::exchange(*_log, std::string());
}

- (const std::string&)log {
    return *_log;
}

@end
