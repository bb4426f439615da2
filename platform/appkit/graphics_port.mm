// The Core Graphics context that draws where AppKit is drawing.
#include <AppKit/AppKit.h>
#include <cairo.h>

#include "appkit/view_pixels.h"
#include "coregraphics/context.h"
#include "objc/method_patch.h"
#include "x11/window_pixels.h"

// Releases a context with the autorelease pool, as callers of -graphicsPort do not own it.
@interface GraphicsPortOwner : NSObject {
  @private
    CGContextRef _context;
}
- (instancetype)initWithContext:(CGContextRef)context;
@end

@implementation GraphicsPortOwner

- (instancetype)initWithContext:(CGContextRef)context {
    if (!(self = [super init])) return nil;
    _context = context;
    return self;
}

- (void)dealloc {
    CGContextRelease(_context);
    [super dealloc];
}

@end

namespace {

IMP stock_graphics_port;

void* graphics_port(NSGraphicsContext* self, SEL selector) {
    cairo_t* cairo = self == [NSGraphicsContext currentContext] ? focused_cairo() : nullptr;
    if (!cairo) {
        return reinterpret_cast<void* (*)(id, SEL)>(stock_graphics_port)(self, selector);
    }
    CGContextRef context = new_context(cairo, focus_matrix(cairo));
    [[[GraphicsPortOwner alloc] initWithContext:context] autorelease];
    return context;
}

}  // namespace

@interface GraphicsPortInstaller : NSObject
@end

@implementation GraphicsPortInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSGraphicsContext", "graphicsPort", reinterpret_cast<IMP>(graphics_port),
         &stock_graphics_port},
    };
    patch_methods(patches);
}

@end
