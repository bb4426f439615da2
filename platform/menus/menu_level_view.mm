#include "menus/menu_level_view.h"

#include "menus/menu_level.h"

@implementation MenuLevelView

- (instancetype)initWithFrame:(NSRect)frame level:(MenuLevel*)level {
    if (!(self = [super initWithFrame:frame])) return nil;
    _level = level;
    return self;
}

- (void)forgetLevel {
    _level = nullptr;
}

// The server counts from the top.
- (BOOL)isFlipped {
    return YES;
}

- (BOOL)isOpaque {
    return NO;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (void)drawRect:(NSRect)rect {
    if (_level) _level->draw(rect);
}

@end

@implementation MenuItemHolder

- (instancetype)initWithArea:(NSRect)area scale:(double)scale itemView:(NSView*)view {
    if (!(self = [super initWithFrame:area])) return nil;
    [self setBoundsSize:NSMakeSize(NSWidth(area) / scale, NSHeight(area) / scale)];
    if ([view autoresizingMask] & NSViewWidthSizable) {
        [view setFrameSize:NSMakeSize(NSWidth([self bounds]), NSHeight([view frame]))];
    }
    [view setFrameOrigin:NSZeroPoint];
    [self addSubview:view];
    return self;
}

@end
