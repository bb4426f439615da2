// The windows and the view of GNUstep's own menus, made on first need, and the methods that need
// them.
#include "menu_classes/menu_storage.h"

#include "objc/method_patch.h"

@interface NSMenu (StockWindows)
- (NSWindow*)_createWindow;
- (void)_menuMoved:(NSNotification*)notification;
- (void)_updateUserDefaults:(NSNotification*)notification;
@end

@implementation NSMenu (LightStorage)

- (BOOL)hasStockRepresentation {
    return _view != nil;
}

- (void)needStockRepresentation {
    // The mark comes first: a new window asks the main menu, which may be this one, for its window.
    if (_aWindow || _menu.unused) return;
    _menu.unused = 1;
    [self needArrays];
    _aWindow = [self _createWindow];
    _bWindow = [self _createWindow];
    if (_popUpButtonCell) [_aWindow setLevel:NSPopUpMenuWindowLevel];
    [_bWindow setLevel:NSPopUpMenuWindowLevel];
    NSMenuView* view = [[NSMenuView alloc] initWithFrame:NSZeroRect];
    [self setMenuRepresentation:view];
    [view release];
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(_menuMoved:)
                   name:NSWindowDidMoveNotification
                 object:_aWindow];
    [center addObserver:self
               selector:@selector(_updateUserDefaults:)
                   name:@"EnqueuedMoveNotificationName"
                 object:self];
}

@end

namespace {

IMP stock_representation, stock_window, stock_display, stock_display_transient, stock_size_to_fit,
    stock_set_geometry, stock_set_representation, stock_submenu_location;

// The methods without arguments, by name.
const struct {
    const char* selector;
    IMP* stock;
} plain_methods[] = {
    {"menuRepresentation", &stock_representation},
    {"window", &stock_window},
    {"display", &stock_display},
    {"displayTransient", &stock_display_transient},
    {"sizeToFit", &stock_size_to_fit},
    {"_setGeometry", &stock_set_geometry},
};

// Serves methods that return nothing, too: nobody reads their result.
id with_parts(NSMenu* self, SEL selector) {
    [self needStockRepresentation];
    for (const auto& method : plain_methods) {
        if (strcmp(sel_getName(selector), method.selector) != 0) continue;
        return reinterpret_cast<id (*)(id, SEL)>(*method.stock)(self, selector);
    }
    return nil;
}

void set_representation(NSMenu* self, SEL selector, id view) {
    [self needStockRepresentation];
    reinterpret_cast<void (*)(id, SEL, id)>(stock_set_representation)(self, selector, view);
}

NSPoint submenu_location(NSMenu* self, SEL selector, NSMenu* submenu) {
    [self needStockRepresentation];
    auto stock = reinterpret_cast<NSPoint (*)(id, SEL, id)>(stock_submenu_location);
    return stock(self, selector, submenu);
}

}  // namespace

@interface MenuPartsInstaller : NSObject
@end

@implementation MenuPartsInstaller

+ (void)load {
    for (const auto& method : plain_methods) {
        const MethodPatch patch[] = {
            {"NSMenu", method.selector, reinterpret_cast<IMP>(with_parts), method.stock}};
        patch_methods(patch);
    }
    const MethodPatch patches[] = {
        {"NSMenu", "setMenuRepresentation:", reinterpret_cast<IMP>(set_representation),
         &stock_set_representation},
        {"NSMenu", "locationForSubmenu:", reinterpret_cast<IMP>(submenu_location),
         &stock_submenu_location},
    };
    patch_methods(patches);
}

@end
