// Points, sizes and rectangles: the same types as Foundation's, as on the Mac.
#pragma once

#ifdef __OBJC__
#include <Foundation/Foundation.h>
#else
#include <stdbool.h>
#include <stddef.h>
// Plain C and C++ cannot read Foundation's header; these are its structures.
typedef double CGFloat;
struct _NSPoint {
    CGFloat x;
    CGFloat y;
};
struct _NSSize {
    CGFloat width;
    CGFloat height;
};
struct _NSRect {
    struct _NSPoint origin;
    struct _NSSize size;
};
#endif

typedef struct _NSPoint CGPoint;
typedef struct _NSSize CGSize;
typedef struct _NSRect CGRect;

static inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
    CGPoint point = {x, y};
    return point;
}

static inline CGSize CGSizeMake(CGFloat width, CGFloat height) {
    CGSize size = {width, height};
    return size;
}

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect rect = {{x, y}, {width, height}};
    return rect;
}

static inline CGFloat CGRectGetMinX(CGRect rect) { return rect.origin.x; }
static inline CGFloat CGRectGetMidX(CGRect rect) { return rect.origin.x + rect.size.width / 2; }
static inline CGFloat CGRectGetMaxX(CGRect rect) { return rect.origin.x + rect.size.width; }
static inline CGFloat CGRectGetMinY(CGRect rect) { return rect.origin.y; }
static inline CGFloat CGRectGetMidY(CGRect rect) { return rect.origin.y + rect.size.height / 2; }
static inline CGFloat CGRectGetMaxY(CGRect rect) { return rect.origin.y + rect.size.height; }

// The left and bottom edges belong to the rectangle, the right and top ones do not.
static inline bool CGRectContainsPoint(CGRect rect, CGPoint point) {
    return point.x >= CGRectGetMinX(rect) && point.x < CGRectGetMaxX(rect) &&
           point.y >= CGRectGetMinY(rect) && point.y < CGRectGetMaxY(rect);
}
