#include "items/DVCircularProgressView.h"

#include <CoreGraphics/CoreGraphics.h>
#include <math.h>

#include <algorithm>

#include "finder/dv_finder.h"

namespace {

constexpr double seconds_a_step = 1.0 / 30, step = 0.03;
constexpr float rim_gray = 0.5f, disc_gray = 0.3f, edge_gray = 0.7f;
constexpr double wedge_angle = M_PI / 6;

void draw_disc(CGContextRef context, float radius) {
    const CGRect square = CGRectMake(-radius, -radius, 2 * radius, 2 * radius);
    CGContextSetGrayStrokeColor(context, rim_gray, 1);
    CGContextSetGrayFillColor(context, disc_gray, 1);
    CGContextFillEllipseInRect(context, square);
    CGContextStrokeEllipseInRect(context, square);
}

void draw_wedge(CGContextRef context, float radius, double phase) {
    CGContextSetGrayStrokeColor(context, edge_gray, 1);
    CGContextSetGrayFillColor(context, 1, 1);
    CGContextRotateCTM(context, (1.0 - phase) * 2 * M_PI);
    CGContextBeginPath(context);
    CGContextMoveToPoint(context, 0, 0);
    CGContextAddArc(context, 0, 0, radius, 0, wedge_angle, 0);
    CGContextDrawPath(context, kCGPathFillStroke);
}

}  // namespace

@implementation DVCircularProgressView
@synthesize currentProgress;
@synthesize lastProgressUpdate;

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (!self) return nil;
    currentProgress = 0;
    lastProgressUpdate = 0;
    return self;
}

- (BOOL)isOpaque {
    return NO;
}

- (void)dvAdvance {
    if (dv_double_time() - lastProgressUpdate <= seconds_a_step) return;
    currentProgress += step;
    if (currentProgress > 1.0) currentProgress = 0;
    lastProgressUpdate = dv_double_time();
}

- (void)drawRect:(NSRect)rect {
    (void)rect;
    [self dvAdvance];
    const NSRect bounds = [self bounds];
    const float radius =
        static_cast<float>((std::min(NSWidth(bounds), NSHeight(bounds)) - 2) * 0.5);
    CGContextRef context =
        static_cast<CGContextRef>([[NSGraphicsContext currentContext] graphicsPort]);
    CGContextSaveGState(context);
    CGContextTranslateCTM(context, NSWidth(bounds) * 0.5, NSHeight(bounds) * 0.5);
    draw_disc(context, radius);
    draw_wedge(context, radius, currentProgress);
    CGContextRestoreGState(context);
}

@end
