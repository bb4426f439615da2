// Methods of the Mac's menus that GNUstep's lack.
#include <AppKit/AppKit.h>
#include <host/menu_tracking.h>

#include <unordered_map>

#include "menu_classes/menu_storage.h"

namespace {

std::unordered_map<NSMenu*, NSFont*>& fonts() {
    static auto* fonts = new std::unordered_map<NSMenu*, NSFont*>;
    return *fonts;
}

void keep_font(NSMenu* menu, NSFont* font) {
    if (fonts().empty() && !font) return;
    NSFont*& slot = fonts()[menu];
    NSFont* previous = slot;
    slot = [font retain];
    if (!font) fonts().erase(menu);
    [previous release];
}

}  // namespace

bool has_menu_font(NSMenu* menu) { return !fonts().empty() && fonts().contains(menu); }

void forget_menu_font(NSMenu* menu) { keep_font(menu, nil); }

@implementation NSMenu (MacMenuMethods)

- (void)removeAllItems {
    // From the end: nothing moves up, so this is linear.
    for (NSInteger i = [self numberOfItems]; i-- > 0;) [self removeItemAtIndex:i];
}

- (void)cancelTracking {
    [[MenuSession sessionOfMenu:self] cancel];
}

- (void)cancelTrackingWithoutAnimation {
    [self cancelTracking];
}

- (NSMenuItem*)highlightedItem {
    MenuSession* session = [MenuSession sessionOfMenu:self];
    if (session) return [session highlightedItemOfMenu:self];
    if (![self hasStockRepresentation]) return nil;
    const NSInteger index = [[self menuRepresentation] highlightedItemIndex];
    return index < 0 || index >= [self numberOfItems] ? nil : (NSMenuItem*)[self itemAtIndex:index];
}

- (void)setFont:(NSFont*)font {
    keep_font(self, font);
}

- (NSFont*)font {
    const auto found = fonts().find(self);
    return found == fonts().end() ? nil : found->second;
}

// There are no descriptor-based menu plug-ins here.
- (void)_setContextMenuPluginAEDesc:(const struct AEDesc*)descriptor {
    (void)descriptor;
}

@end
