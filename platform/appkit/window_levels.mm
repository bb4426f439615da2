// Windows above menus, and windows that cannot be seen: what the Mac's window server does with
// levels and alpha, a window manager does not.
#include <AppKit/AppKit.h>

#include <GNUstepGUI/GSDisplayServer.h>

#include "appkit/menu_windows.h"
#include "appkit/method_patch.h"

namespace {

IMP stock_set_level, stock_set_alpha;

bool has_server_window(NSWindow* window) { return GSCurrentServer() && [window windowNumber] > 0; }

void set_level(NSWindow* self, SEL selector, NSInteger level) {
    reinterpret_cast<void (*)(id, SEL, NSInteger)>(stock_set_level)(self, selector, level);
    if (level <= NSPopUpMenuWindowLevel || !has_server_window(self)) return;
    // Menus are no window manager's, so a window above them cannot be one's either.
    if ([self styleMask] == NSBorderlessWindowMask) free_from_window_manager(self);
}

// Without a compositor a window is either there or not; it stays ordered in, as on the Mac.
void set_alpha(NSWindow* self, SEL selector, CGFloat alpha) {
    const bool was_hidden = [self alphaValue] <= 0;
    reinterpret_cast<void (*)(id, SEL, CGFloat)>(stock_set_alpha)(self, selector, alpha);
    if (!has_server_window(self) || was_hidden == (alpha <= 0)) return;
    if (alpha > 0) {
        shape_menu_window(self, 0);
    } else if (!windows_are_composed()) {
        hide_shape_of_menu_window(self);
    }
}

}  // namespace

@interface WindowLevelsInstaller : NSObject
@end

@implementation WindowLevelsInstaller

+ (void)load {
    const method_patch_t patches[] = {
        {"NSWindow", "setLevel:", reinterpret_cast<IMP>(set_level), &stock_set_level},
        {"NSWindow", "setAlphaValue:", reinterpret_cast<IMP>(set_alpha), &stock_set_alpha},
    };
    patch_methods(patches);
}

@end
