// Fonts under the Mac's own names. Programs take these names for granted, and a nil font would end
// a dictionary of attributes early.
#include <AppKit/AppKit.h>

#include "objc/method_patch.h"

namespace {

IMP stock_font;

NSFont* system_font(CGFloat size) { return [NSFont systemFontOfSize:size]; }
NSFont* fixed_font(CGFloat size) { return [NSFont userFixedPitchFontOfSize:size]; }

const struct {
    NSString* name;
    NSFont* (*font)(CGFloat size);
} stand_ins[] = {
    {@"Lucida Grande", system_font},
    {@"LucidaGrande", system_font},
    {@"Monaco", fixed_font},
};

// An installed font with the name comes first. Size 0 is the default size.
NSFont* font_with_name(id self, SEL selector, NSString* name, CGFloat size) {
    auto stock = reinterpret_cast<NSFont* (*)(id, SEL, NSString*, CGFloat)>(stock_font);
    NSFont* font = stock(self, selector, name, size);
    if (font) return font;
    for (const auto& stand_in : stand_ins) {
        if ([name isEqualToString:stand_in.name]) return stand_in.font(size);
    }
    return nil;
}

}  // namespace

@interface FontMethodsInstaller : NSObject
@end

@implementation FontMethodsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSFont", "fontWithName:size:", reinterpret_cast<IMP>(font_with_name), &stock_font, true},
    };
    patch_methods(patches);
}

@end
