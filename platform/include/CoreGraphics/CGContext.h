// Drawing into a context: y goes up from the lower left corner. Only one thread at a time may use a
// context.
#pragma once

#include <CoreGraphics/CGGeometry.h>

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGContext* CGContextRef;

enum CGPathDrawingMode {
    kCGPathFill = 0,
    kCGPathEOFill = 1,
    kCGPathStroke = 2,
    kCGPathFillStroke = 3,
    kCGPathEOFillStroke = 4
};
typedef enum CGPathDrawingMode CGPathDrawingMode;

enum CGTextDrawingMode { kCGTextFill = 0, kCGTextInvisible = 3 };
typedef enum CGTextDrawingMode CGTextDrawingMode;

enum CGTextEncoding { kCGEncodingFontSpecific = 0, kCGEncodingMacRoman = 1 };
typedef enum CGTextEncoding CGTextEncoding;

CGContextRef CGContextRetain(CGContextRef context);
// All functions ignore a null context.
void CGContextRelease(CGContextRef context);

// These two save and restore all state below, except the current path.
void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);
void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y);
// Counter-clockwise, in radians.
void CGContextRotateCTM(CGContextRef context, CGFloat angle);

void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                              CGFloat alpha);
void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                CGFloat alpha);
void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha);
void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha);
void CGContextSetShouldAntialias(CGContextRef context, bool shouldAntialias);

// Lines are one unit wide. All four discard the current path.
void CGContextFillRect(CGContextRef context, CGRect rect);
void CGContextStrokeRect(CGContextRef context, CGRect rect);
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect);

void CGContextBeginPath(CGContextRef context);
void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
// Adds a line to the arc's start, then the arc from the angle `start` to `end`, in radians. Angles
// increase unless `clockwise` is 1.
void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat start,
                     CGFloat end, int clockwise);
// Draws the current path, which is empty afterwards.
void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode);

// The font is fontconfig's answer to the name; for a name that is not installed, a fixed-pitch
// font. Each byte of a text is a MacRoman character and gives one glyph.
void CGContextSelectFont(CGContextRef context, const char* name, CGFloat size,
                         CGTextEncoding encoding);
// Added to each glyph's advance.
void CGContextSetCharacterSpacing(CGContextRef context, CGFloat spacing);
void CGContextSetTextDrawingMode(CGContextRef context, CGTextDrawingMode mode);
// The baseline starts at the point. A byte without a glyph (a control byte) leaves a blank. Without
// a selected font nothing is drawn.
void CGContextShowTextAtPoint(CGContextRef context, CGFloat x, CGFloat y, const char* bytes,
                              size_t length);

#ifdef __cplusplus
}
#endif
