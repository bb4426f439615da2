#include "x11/menu_windows.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlibint.h>
#include <X11/extensions/shape.h>
#undef min
#undef max

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>
#include <vector>

#include "x11/server_windows.h"
#include "x11/toolkit_display.h"
#include "x11/window_pixels.h"

namespace {

// Only a menu decides on the size of its windows. Any program may send a window the news of
// another size, and the toolkit would make room for its pixels in the server.
using Size = std::pair<int, int>;
using Conversion = Bool (*)(Display*, XEvent*, xEvent*);
Conversion stock_conversion;

std::unordered_map<Window, Size>& believed_sizes() {
    static auto& sizes = *new std::unordered_map<Window, Size>;
    return sizes;
}

Bool convert_believed(Display* display, XEvent* event, xEvent* sent) {
    const Bool is_event = stock_conversion(display, event, sent);
    const auto found = believed_sizes().find(event->xconfigure.window);
    if (found == believed_sizes().end()) return is_event;
    event->xconfigure.width = found->second.first;
    event->xconfigure.height = found->second.second;
    return is_event;
}

}  // namespace

@interface MenuWindow : NSWindow
@end

@implementation MenuWindow
- (void)dealloc {
    believed_sizes().erase(server_window(self));
    [super dealloc];
}
@end

namespace {

void believe_only(NSWindow* window, const Area& area) {
    if (![window isKindOfClass:[MenuWindow class]]) return;
    believed_sizes()[server_window(window)] = {area.width, area.height};
    if (stock_conversion) return;
    stock_conversion = XESetWireToEvent(toolkit_display(), ConfigureNotify, convert_believed);
}

NSRect frame_of(const Area& area) {
    return NSMakeRect(area.left, toolkit_display_height() - area.bottom(), area.width, area.height);
}

// Pixels that a corner of this radius leaves out on the line `y` from its edge.
int corner_cut(int radius, int y) {
    const double down = radius - y - 0.5;
    return static_cast<int>(std::lround(radius - std::sqrt(radius * radius - down * down)));
}

// Keeps windows of a higher level in front of a window that has come to the front.
void raise_higher_windows(NSInteger level) {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window level] > level) {
            XRaiseWindow(toolkit_display(), server_window(window));
        }
    }
}

// The server keeps nothing of a hidden window. It gets the pixels together with the request to show
// the window, not only once it has asked for them.
void flush_window(NSWindow* window) {
    const NSSize size = [window frame].size;
    [GSServerForWindow(window)
        flushwindowrect:NSMakeRect(0, 0, size.width, size.height
                                   ):static_cast<int>([window windowNumber])];
}

}  // namespace

NSWindow* new_menu_window(const Area& area) {
    // The window is unscaled: the drawing is scaled already, and GNUstep must not scale it again.
    NSWindow* window =
        [[MenuWindow alloc] initWithContentRect:frame_of(area)
                                      styleMask:NSBorderlessWindowMask | NSUnscaledWindowMask
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setExcludedFromWindowsMenu:YES];
    [window setTitle:@"Menu"];
    [window setOpaque:NO];
    [window setBackgroundColor:[NSColor clearColor]];
    [window setLevel:NSPopUpMenuWindowLevel];
    [window setAutodisplay:NO];  // the run loop would swallow a view's exception
    free_from_window_manager(window);
    believe_only(window, area);
    set_window_type(window, "_NET_WM_WINDOW_TYPE_POPUP_MENU");
    return window;
}

void move_menu_window(NSWindow* window, const Area& area) {
    believe_only(window, area);
    [window setFrame:frame_of(area) display:NO];
}

void hide_shape_of_menu_window(NSWindow* window) {
    XShapeCombineRectangles(toolkit_display(), server_window(window), ShapeBounding, 0, 0, nullptr,
                            0, ShapeSet, Unsorted);
    XFlush(toolkit_display());
}

void shape_menu_window(NSWindow* window, int radius) {
    if (radius <= 0) {
        XShapeCombineMask(toolkit_display(), server_window(window), ShapeBounding, 0, 0, None,
                          ShapeSet);
        return;
    }
    shape_window_as_panel(window,
                          {0, 0, static_cast<int>(NSWidth([window frame])),
                           static_cast<int>(NSHeight([window frame]))},
                          radius);
}

void shape_window_as_panel(NSWindow* window, const Area& panel, int radius) {
    std::vector<XRectangle> lines;
    const auto add = [&](int left, int top, int wide, int high) {
        lines.push_back({static_cast<short>(panel.left + left), static_cast<short>(panel.top + top),
                         static_cast<unsigned short>(wide), static_cast<unsigned short>(high)});
    };
    for (int y = 0; y < radius; y++) {
        const int cut = corner_cut(radius, y);
        add(cut, y, panel.width - 2 * cut, 1);
        add(cut, panel.height - 1 - y, panel.width - 2 * cut, 1);
    }
    add(0, radius, panel.width, std::max(0, panel.height - 2 * radius));
    XShapeCombineRectangles(toolkit_display(), server_window(window), ShapeBounding, 0, 0,
                            lines.data(), static_cast<int>(lines.size()), ShapeSet, Unsorted);
}

void display_menu_window(NSWindow* window) {
    NSView* focused = [NSView focusView];
    @try {
        [window displayIfNeeded];
    } @catch (id) {
        while ([NSView focusView] && [NSView focusView] != focused) {
            [[NSView focusView] unlockFocus];
        }
        @throw;
    }
}

void show_menu_window(NSWindow* window) {
    [[window contentView] setNeedsDisplay:YES];
    display_menu_window(window);  // before the user sees it
    const ShownWithPixels pixels(window);
    [window orderFrontRegardless];
    if (!pixels.is_possible()) flush_window(window);
    raise_higher_windows([window level]);
    XFlush(toolkit_display());
}
