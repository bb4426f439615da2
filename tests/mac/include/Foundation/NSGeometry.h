// The toolkit's points and rectangles are Core Graphics' own in 64-bit programs alone.
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <Foundation/NSObjCRuntime.h>

#if __LP64__
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
#else
typedef struct _NSPoint {
    CGFloat x;
    CGFloat y;
} NSPoint;
typedef struct _NSSize {
    CGFloat width;
    CGFloat height;
} NSSize;
typedef struct _NSRect {
    NSPoint origin;
    NSSize size;
} NSRect;
#endif

extern "C" {

extern const NSPoint NSZeroPoint;
extern const NSSize NSZeroSize;
extern const NSRect NSZeroRect;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
    NSPoint point = {x, y};
    return point;
}
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
    NSSize size = {width, height};
    return size;
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    NSRect rect = {{x, y}, {width, height}};
    return rect;
}
static inline CGFloat NSMinX(NSRect rect) { return rect.origin.x; }
static inline CGFloat NSMinY(NSRect rect) { return rect.origin.y; }
static inline CGFloat NSMaxX(NSRect rect) { return rect.origin.x + rect.size.width; }
static inline CGFloat NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }
static inline CGFloat NSMidX(NSRect rect) { return rect.origin.x + rect.size.width * 0.5f; }
static inline CGFloat NSMidY(NSRect rect) { return rect.origin.y + rect.size.height * 0.5f; }
static inline CGFloat NSWidth(NSRect rect) { return rect.size.width; }
static inline CGFloat NSHeight(NSRect rect) { return rect.size.height; }

static inline CGRect NSRectToCGRect(NSRect rect) {
    return CGRectMake(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}
static inline CGPoint NSPointToCGPoint(NSPoint point) { return CGPointMake(point.x, point.y); }
}
