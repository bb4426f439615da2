#include "appkit/view_fade.h"

#include <QuartzCore/QuartzCore.h>
#include <cairo.h>

#include <cmath>

#include "appkit/view_pixels.h"
#include "desktop/desktop_settings.h"
#include "events/deadline.h"
#include "x11/window_pixels.h"

namespace {

constexpr NSTimeInterval view_step_interval = 1.0 / 30;

NSTimeInterval fade_duration(NSView* view) {
    CATransition* transition = [[view animations] objectForKey:@"subviews"];
    const bool fades = [[transition type] isEqualToString:kCATransitionFade];
    return fades && DesktopSettings().animates() ? [transition duration] : 0;
}

ViewFade* running_fade(NSView* view) {
    for (NSView* subview in [view subviews]) {
        if ([subview isKindOfClass:[ViewFade class]]) return static_cast<ViewFade*>(subview);
    }
    return nil;
}

}  // namespace

@implementation ViewFade

+ (instancetype)fadeOfView:(NSView*)view {
    const NSTimeInterval duration = fade_duration(view);
    if (duration <= 0 || ![[view window] isVisible]) return nil;
    cairo_surface_t* before = copy_view_pixels(view);
    if (!before) return nil;
    ViewFade* fade = [[[self alloc] initWithFrame:[view bounds]] autorelease];
    fade->_before = before;
    fade->_duration = duration;
    [running_fade(view) end];
    [view addSubview:fade];
    return fade;
}

- (void)dealloc {
    cairo_surface_destroy(_before);
    [super dealloc];
}

- (void)start {
    // Puts itself above the subviews that the change has added.
    NSView* view = [[self superview] retain];
    [[self retain] autorelease];
    [self removeFromSuperview];
    [view addSubview:self];
    _begun = seconds_now();
    _timer = [NSTimer timerWithTimeInterval:view_step_interval
                                     target:self
                                   selector:@selector(step:)
                                   userInfo:nil
                                    repeats:YES];
    for (NSString* mode in @[ NSDefaultRunLoopMode, NSEventTrackingRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:_timer forMode:mode];
    }
    [view setNeedsDisplay:YES];
    [view release];
}

- (void)end {
    NSView* view = [self superview];
    [_timer invalidate];
    _timer = nil;
    [view setNeedsDisplay:YES];
    [self removeFromSuperview];
}

- (double)share {
    return std::min((seconds_now() - _begun) / _duration, 1.0);
}

- (void)step:(NSTimer*)timer {
    (void)timer;
    if ([self share] >= 1) return [self end];
    [[self superview] setNeedsDisplay:YES];
}

- (BOOL)isOpaque {
    return NO;
}

- (NSView*)hitTest:(NSPoint)point {
    (void)point;
    return nil;
}

// The view below has drawn its new content already. That content is kept in the share of the time
// that has passed; the old picture makes up the rest.
- (void)drawRect:(NSRect)rect {
    (void)rect;
    cairo_t* cairo = focused_cairo();
    if (!cairo || !_timer) return;
    const double share = [self share];
    cairo_save(cairo);
    const NSRect area = focus_device_area([self bounds]);
    cairo_identity_matrix(cairo);
    cairo_rectangle(cairo, NSMinX(area), NSMinY(area), NSWidth(area), NSHeight(area));
    cairo_clip(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_DEST_IN);
    cairo_set_source_rgba(cairo, 0, 0, 0, share);
    cairo_paint(cairo);
    cairo_set_operator(cairo, CAIRO_OPERATOR_ADD);
    cairo_set_source_surface(cairo, _before, NSMinX(area), NSMinY(area));
    cairo_paint_with_alpha(cairo, 1 - share);
    cairo_restore(cairo);
}

@end
