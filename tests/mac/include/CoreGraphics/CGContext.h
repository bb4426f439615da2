#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>

extern "C" {

typedef struct CGContext* CGContextRef;

enum CGPathDrawingMode {
    kCGPathFill,
    kCGPathEOFill,
    kCGPathStroke,
    kCGPathFillStroke,
    kCGPathEOFillStroke
};
typedef enum CGPathDrawingMode CGPathDrawingMode;

enum CGTextDrawingMode { kCGTextFill, kCGTextStroke, kCGTextFillStroke, kCGTextInvisible };
typedef enum CGTextDrawingMode CGTextDrawingMode;

enum CGTextEncoding { kCGEncodingFontSpecific, kCGEncodingMacRoman };
typedef enum CGTextEncoding CGTextEncoding;

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space,
                                   CGBitmapInfo bitmapInfo);
void CGContextRelease(CGContextRef context);
void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);
void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y);
void CGContextRotateCTM(CGContextRef context, CGFloat angle);

void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                              CGFloat alpha);
void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                CGFloat alpha);
void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha);
void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha);
void CGContextSetShouldAntialias(CGContextRef context, bool shouldAntialias);

void CGContextFillRect(CGContextRef context, CGRect rect);
void CGContextStrokeRect(CGContextRef context, CGRect rect);
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect);

void CGContextBeginPath(CGContextRef context);
void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius, CGFloat start,
                     CGFloat end, int clockwise);
void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode);

void CGContextSelectFont(CGContextRef context, const char* name, CGFloat size,
                         CGTextEncoding encoding);
void CGContextSetCharacterSpacing(CGContextRef context, CGFloat spacing);
void CGContextSetTextDrawingMode(CGContextRef context, CGTextDrawingMode mode);
void CGContextShowTextAtPoint(CGContextRef context, CGFloat x, CGFloat y, const char* text,
                              size_t length);
}
