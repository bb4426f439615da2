// Named images without ImageMagick. To find the file of a name, GNUstep asks every image class for
// its file endings, even when no such file exists, and ImageMagick's class loads all its modules to
// answer.
#include <AppKit/AppKit.h>

#include "objc/method_patch.h"

namespace {

IMP stock_named, stock_types, stock_filtered_types, stock_tiles;
thread_local bool is_looking;  // the thread is looking for the file of a name

class Look {
  public:
    Look() { is_looking = true; }
    ~Look() { is_looking = outer_; }

  private:
    bool outer_ = is_looking;
};

id stock_image_named(id self, SEL selector, NSString* name) {
    return reinterpret_cast<id (*)(id, SEL, id)>(stock_named)(self, selector, name);
}

id image_of_usual_type(id self, SEL selector, NSString* name) {
    const Look look;
    return stock_image_named(self, selector, name);
}

// Looks for files of the usual types, then, for a name with an ending, for files of any type.
id image_named(id self, SEL selector, NSString* name) {
    // GNU's run time calls a replaced class method without +initialize before it. Any other message
    // brings +initialize.
    [self self];
    id image = is_looking ? nil : image_of_usual_type(self, selector, name);
    const bool is_done = image || (!is_looking && [[name pathExtension] length] == 0);
    return is_done ? image : stock_image_named(self, selector, name);
}

// The types that GNUstep reads itself, which include all images of the system, and the types of
// images that programs bring.
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

// GNUstep asks this about the ending of a file that it has found.
NSArray* filtered_file_types(id self, SEL selector) {
    if (is_looking) return usual_types();
    return reinterpret_cast<NSArray* (*)(id, SEL)>(stock_filtered_types)(self, selector);
}

// GNUstep looks for the pictures of a theme's surfaces in the same way.
id tiles_named(id self, SEL selector, NSString* name, NSInteger state) {
    const Look look;
    return reinterpret_cast<id (*)(id, SEL, id, NSInteger)>(stock_tiles)(self, selector, name,
                                                                         state);
}

}  // namespace

@interface NamedImagesInstaller : NSObject
@end

@implementation NamedImagesInstaller

+ (void)load {
    const MethodPatch patches[] = {
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
