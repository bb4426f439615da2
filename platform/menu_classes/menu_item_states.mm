// Looks up the images of an item's states when somebody asks for them. Our menus never show these
// images, and GNUstep looks in the file system twice for every new item.
#include <AppKit/AppKit.h>

#include "menu_classes/menu_storage.h"
#include "objc/method_patch.h"

// An item that was told to have no image for a state keeps one of these; nil stands for the usual
// image.
@interface NoStateImage : NSImage
@end

@implementation NoStateImage
@end

@implementation NSMenuItem (LightStates)

- (instancetype)initAsPlainObject {
    return [super init];
}

static IMP stock_encode;

static NSImage* shown_image(NSImage* kept, NSString* usual) {
    if (!kept) return [NSImage imageNamed:usual];
    return [kept isKindOfClass:[NoStateImage class]] ? nil : kept;
}

static NSImage* on_image(NSMenuItem* self, SEL) {
    return shown_image(self->_onStateImage, @"NSMenuCheckmark");
}

static NSImage* mixed_image(NSMenuItem* self, SEL) {
    return shown_image(self->_mixedStateImage, @"NSMenuMixedState");
}

static void keep_image(NSMenuItem* self, NSImage** kept, NSImage* image) {
    NSImage* previous = *kept;
    *kept = image ? [image retain] : [NoStateImage new];
    [previous release];
    [self->_menu itemChanged:self];
}

static void set_on_image(NSMenuItem* self, SEL, NSImage* image) {
    keep_image(self, &self->_onStateImage, image);
}

static void set_mixed_image(NSMenuItem* self, SEL, NSImage* image) {
    keep_image(self, &self->_mixedStateImage, image);
}

// Does what GNUstep's own initializer does, except for the images.
static id init_light_item(NSMenuItem* self, SEL, NSString* title, SEL action, NSString* key) {
    if (!(self = [self initAsPlainObject])) return nil;
    give_title_and_key(self, title, key);
    self->_keyEquivalentModifierMask = NSCommandKeyMask;
    self->_mnemonicLocation = 255;  // none
    self->_state = NSOffState;
    self->_enabled = YES;
    self->_action = action;
    return self;
}

// An archive holds what the item shows.
static void encode(NSMenuItem* self, SEL selector, NSCoder* coder) {
    NSImage *const on = self->_onStateImage, *const mixed = self->_mixedStateImage;
    self->_onStateImage = [self onStateImage];
    self->_mixedStateImage = [self mixedStateImage];
    reinterpret_cast<void (*)(id, SEL, id)>(stock_encode)(self, selector, coder);
    self->_onStateImage = on;
    self->_mixedStateImage = mixed;
}

@end

@interface MenuItemStatesInstaller : NSObject
@end

@implementation MenuItemStatesInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSMenuItem",
         "initWithTitle:action:keyEquivalent:", reinterpret_cast<IMP>(init_light_item), nullptr},
        {"NSMenuItem", "onStateImage", reinterpret_cast<IMP>(on_image), nullptr},
        {"NSMenuItem", "mixedStateImage", reinterpret_cast<IMP>(mixed_image), nullptr},
        {"NSMenuItem", "setOnStateImage:", reinterpret_cast<IMP>(set_on_image), nullptr},
        {"NSMenuItem", "setMixedStateImage:", reinterpret_cast<IMP>(set_mixed_image), nullptr},
        {"NSMenuItem", "encodeWithCoder:", reinterpret_cast<IMP>(encode), &stock_encode},
    };
    patch_methods(patches);
}

@end
