// Windows above menus, and windows with an alpha of 0. The Mac's window server acts on levels and
// alpha; a window manager does not.
#include <AppKit/AppKit.h>

#include <GNUstepGUI/GSDisplayServer.h>
#include <cairo.h>

#include "appkit/card_window.h"
#include "appkit/view_pixels.h"
#include "objc/method_patch.h"
#include "x11/menu_windows.h"
#include "x11/screens.h"
#include "x11/server_windows.h"

namespace {

IMP stock_set_level, stock_set_alpha, stock_flush, stock_order_front, stock_set_frame;

bool has_server_window(NSWindow* window) { return GSCurrentServer() && [window windowNumber] > 0; }

void set_level(NSWindow* self, SEL selector, NSInteger level) {
    reinterpret_cast<void (*)(id, SEL, NSInteger)>(stock_set_level)(self, selector, level);
    if (level <= NSPopUpMenuWindowLevel || !has_server_window(self)) return;
    // The window manager does not manage menus, so it must not manage a window above them either.
    if ([self styleMask] == NSBorderlessWindowMask) make_tip_window(self);
}

// Whether the window's level puts it above menus.
bool is_raised(NSWindow* window) {
    return [window level] > NSPopUpMenuWindowLevel &&
           [window styleMask] == NSBorderlessWindowMask && has_server_window(window);
}

// GNUstep leaves the windows of an inactive program behind the windows of the active program.
void order_front(NSWindow* self, SEL selector, id sender) {
    if (is_raised(self)) {
        prepare_raised_window(self);
        return [self orderFrontRegardless];
    }
    reinterpret_cast<void (*)(id, SEL, id)>(stock_order_front)(self, selector, sender);
}

void set_frame(NSWindow* self, SEL selector, NSRect frame, BOOL display, BOOL animate) {
    if (is_card_beside_menu(self)) return;
    using Set = void (*)(id, SEL, NSRect, BOOL, BOOL);
    reinterpret_cast<Set>(stock_set_frame)(self, selector, frame, display, animate);
}

// Whether clear parts of the window would be black, as nothing composes it with the windows below.
bool needs_cutting(NSWindow* window) {
    return [window level] > NSPopUpMenuWindowLevel && ![window isOpaque] &&
           [window styleMask] == NSBorderlessWindowMask && !windows_are_composed();
}

constexpr unsigned least_alpha = 0x40;

// The runs of visible pixels in a picture of the window.
std::vector<Area> drawn_parts(cairo_surface_t* picture) {
    std::vector<Area> parts;
    const int width = cairo_image_surface_get_width(picture);
    const int stride = cairo_image_surface_get_stride(picture);
    cairo_surface_flush(picture);
    for (int y = 0; y < cairo_image_surface_get_height(picture); y++) {
        const auto* row =
            reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(picture) + y * stride);
        for (int x = 0, left = 0; x < width; left = ++x) {
            while (x < width && row[x] >> 24 >= least_alpha) x++;
            if (x > left) parts.push_back({left, y, x - left, 1});
        }
    }
    return parts;
}

// Puts white below half-transparent pixels, which would otherwise be mixed with black. False when
// there are none.
bool put_on_white(cairo_surface_t* picture) {
    bool changed = false;
    const int width = cairo_image_surface_get_width(picture);
    const int stride = cairo_image_surface_get_stride(picture);
    cairo_surface_flush(picture);
    for (int y = 0; y < cairo_image_surface_get_height(picture); y++) {
        auto* row = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(picture) + y * stride);
        for (int x = 0; x < width; x++) {
            const uint32_t alpha = row[x] >> 24;
            if (alpha < least_alpha || alpha == 0xff) continue;
            // No colour exceeds its alpha, so the addition carries nothing from one byte to the
            // next.
            row[x] += (0xff - alpha) * 0x01010101;
            changed = true;
        }
    }
    cairo_surface_mark_dirty(picture);
    return changed;
}

void cut_to_drawing(NSWindow* window) {
    static bool is_cutting;  // reading and drawing the window's pixels may flush it
    if (is_cutting) return;
    is_cutting = true;
    NSView* content = [window contentView];
    if (cairo_surface_t* picture = copy_view_pixels(content)) {
        if (put_on_white(picture)) replace_view_pixels(content, picture);
        cut_window(window, drawn_parts(picture));
        cairo_surface_destroy(picture);
    }
    is_cutting = false;
}

// A flush comes after drawing, so the window's outline follows the new drawing here.
void flush_window(NSWindow* self, SEL selector) {
    if (has_server_window(self) && [self isVisible] && [self alphaValue] > 0) {
        if (is_card(self)) {
            update_card(self);
        } else if (needs_cutting(self)) {
            cut_to_drawing(self);
        }
    }
    reinterpret_cast<void (*)(id, SEL)>(stock_flush)(self, selector);
}

// Without a compositor a window is either visible or not. A hidden one stays ordered in, as on the
// Mac.
void set_alpha(NSWindow* self, SEL selector, CGFloat alpha) {
    const bool was_hidden = [self alphaValue] <= 0;
    reinterpret_cast<void (*)(id, SEL, CGFloat)>(stock_set_alpha)(self, selector, alpha);
    if (!has_server_window(self) || was_hidden == (alpha <= 0)) return;
    if (alpha > 0 && is_card(self)) {
        update_card(self);
        shape_card(self);
        [self flushWindow];
    } else if (alpha > 0) {
        needs_cutting(self) ? cut_to_drawing(self) : shape_menu_window(self, 0);
        [self flushWindow];  // what it drew while hidden is lost
    } else if (!windows_are_composed()) {
        hide_shape_of_menu_window(self);
    }
}

}  // namespace

@interface WindowLevelsInstaller : NSObject
@end

@implementation WindowLevelsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSWindow", "setLevel:", reinterpret_cast<IMP>(set_level), &stock_set_level},
        {"NSWindow", "setAlphaValue:", reinterpret_cast<IMP>(set_alpha), &stock_set_alpha},
        {"NSWindow", "orderFront:", reinterpret_cast<IMP>(order_front), &stock_order_front},
        {"NSWindow", "setFrame:display:animate:", reinterpret_cast<IMP>(set_frame),
         &stock_set_frame},
        {"NSWindow", "flushWindow", reinterpret_cast<IMP>(flush_window), &stock_flush},
    };
    patch_methods(patches);
}

@end
