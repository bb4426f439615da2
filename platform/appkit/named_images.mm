// Named images without ImageMagick: to find the file of a name, even of one that no file has,
// GNUstep asks every class of images for its endings, and that one loads all its modules to tell.
#include <AppKit/AppKit.h>

#include "objc/method_patch.h"

namespace {

IMP stock_named, stock_types, stock_filtered_types, stock_tiles;
thread_local bool is_looking;  // for the file of a name

class look_t {
  public:
    look_t() { is_looking = true; }
    ~look_t() { is_looking = outer_; }

  private:
    bool outer_ = is_looking;
};

id stock_image_named(id self, SEL selector, NSString* name) {
    return reinterpret_cast<id (*)(id, SEL, id)>(stock_named)(self, selector, name);
}

id image_of_usual_type(id self, SEL selector, NSString* name) {
    const look_t look;
    return stock_image_named(self, selector, name);
}

// A name with an ending can be of any type.
id image_named(id self, SEL selector, NSString* name) {
    // GNU's run time finds a replaced class method even before +initialize: another one brings
    // that.
    [self self];
    id image = is_looking ? nil : image_of_usual_type(self, selector, name);
    const bool is_done = image || (!is_looking && [[name pathExtension] length] == 0);
    return is_done ? image : stock_image_named(self, selector, name);
}

// Those that GNUstep reads itself, which all images of the system are of, and what programs bring.
NSArray* usual_types() {
    static NSArray* const types =
        [[[NSBitmapImageRep imageUnfilteredFileTypes] arrayByAddingObjectsFromArray:@[
            @"svg", @"svgz", @"bmp", @"xpm", @"webp", @"ico", @"psd", @"pdf", @"eps"
        ]] retain];
    return types;
}

NSArray* file_types(id self, SEL selector) {
    if (is_looking) return usual_types();
    return reinterpret_cast<NSArray* (*)(id, SEL)>(stock_types)(self, selector);
}

// Asked for the ending of the file that was found.
NSArray* filtered_file_types(id self, SEL selector) {
    if (is_looking) return usual_types();
    return reinterpret_cast<NSArray* (*)(id, SEL)>(stock_filtered_types)(self, selector);
}

// The pictures that a theme makes its surfaces of are looked for like that, too.
id tiles_named(id self, SEL selector, NSString* name, NSInteger state) {
    const look_t look;
    return reinterpret_cast<id (*)(id, SEL, id, NSInteger)>(stock_tiles)(self, selector, name,
                                                                         state);
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
        {"NSImage", "imageFileTypes", reinterpret_cast<IMP>(filtered_file_types),
         &stock_filtered_types, true},
        {"GSTheme", "tilesNamed:state:", reinterpret_cast<IMP>(tiles_named), &stock_tiles},
    };
    patch_methods(patches);
}

@end
