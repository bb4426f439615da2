#include "plugin/loader/walking_tracker.h"

@implementation WalkingTracker

- (void)dealloc {
    [_font release];
    [_menu release];
    [super dealloc];
}

- (void)setWalk:(const Walk&)walk {
    _walk = walk;
}

- (int)popups {
    return _popups;
}

- (NSFont*)font {
    return _font;
}

- (NSMenu*)menu {
    return _menu;
}

- (void)trackSession:(MenuSession*)session
               event:(NSEvent*)event
                view:(NSView*)view
                font:(NSFont*)font {
    (void)event;
    (void)view;
    _popups++;
    [_font autorelease];
    [_menu autorelease];
    _font = [font retain];
    _menu = [[session rootMenu] retain];
    [session open];
    const Walk walk = _walk;
    if (walk) walk(session);
    [session close];
}

@end
