// Named images without ImageMagick: to find the file of a name, GNUstep asks every class of images
// for its endings, and that one loads all its modules to tell.
#include <AppKit/AppKit.h>

#include "objc/method_patch.h"

namespace {

IMP stock_named, stock_types;
thread_local bool is_looking;  // for the file of a name

struct look_t {
    look_t() { is_looking = true; }
    ~look_t() { is_looking = false; }
};

id stock_image_named(id self, SEL selector, NSString* name) {
    return reinterpret_cast<id (*)(id, SEL, id)>(stock_named)(self, selector, name);
}

// First among the endings that GNUstep reads itself, which is where all images of the system are.
id image_among_plain_types(id self, SEL selector, NSString* name) {
    const look_t look;
    return stock_image_named(self, selector, name);
}

id image_named(id self, SEL selector, NSString* name) {
    // GNU's run time finds a replaced class method even before +initialize: another one brings
    // that.
    [self self];
    id image = is_looking ? nil : image_among_plain_types(self, selector, name);
    return image ? image : stock_image_named(self, selector, name);
}

NSArray* file_types(id self, SEL selector) {
    if (is_looking) return [NSBitmapImageRep imageUnfilteredFileTypes];
    return reinterpret_cast<NSArray* (*)(id, SEL)>(stock_types)(self, selector);
}

}  // namespace

@interface NamedImagesInstaller : NSObject
@end

@implementation NamedImagesInstaller

+ (void)load {
    const method_patch_t patches[] = {
        {"NSImage", "imageNamed:", reinterpret_cast<IMP>(image_named), &stock_named, true},
        {"NSImage", "imageUnfilteredFileTypes", reinterpret_cast<IMP>(file_types), &stock_types,
         true},
    };
    patch_methods(patches);
}

@end
