#include "x11/menu_windows.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xrandr.h>
#include <X11/extensions/shape.h>
#include <cairo-xlib.h>
#include <objc/runtime.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

Display* display() { return static_cast<Display*>([GSCurrentServer() serverDevice]); }

::Window x_window(NSWindow* window) {
    void* device = [GSCurrentServer() windowDevice:[window windowNumber]];
    return static_cast<::Window>(reinterpret_cast<uintptr_t>(device));
}

int server_height() { return DisplayHeight(display(), DefaultScreen(display())); }

NSRect frame_of(const area_t& area) {
    return NSMakeRect(area.left, server_height() - area.bottom(), area.width, area.height);
}

long distance(const area_t& area, point_t point) {
    const long x = std::max({area.left - point.x, 0, point.x - area.right() + 1});
    const long y = std::max({area.top - point.y, 0, point.y - area.bottom() + 1});
    return x * x + y * y;
}

std::vector<area_t> screens() {
    std::vector<area_t> areas;
    int count = 0;
    const ::Window root = DefaultRootWindow(display());
    XRRMonitorInfo* monitors = XRRGetMonitors(display(), root, True, &count);
    for (int i = 0; i < count; i++) {
        const XRRMonitorInfo& monitor = monitors[i];
        if (monitor.width > 0 && monitor.height > 0) {
            areas.push_back({monitor.x, monitor.y, monitor.width, monitor.height});
        }
    }
    if (monitors) XRRFreeMonitors(monitors);
    return areas;
}

void set_window_type(::Window window, const char* name) {
    const Atom property = XInternAtom(display(), "_NET_WM_WINDOW_TYPE", False);
    Atom type = XInternAtom(display(), name, False);
    XChangeProperty(display(), window, property, XA_ATOM, 32, PropModeReplace,
                    reinterpret_cast<unsigned char*>(&type), 1);
}

// Pixels that a corner of this radius leaves out on the line `y` from its edge.
int corner_cut(int radius, int y) {
    const double down = radius - y - 0.5;
    return static_cast<int>(std::lround(radius - std::sqrt(radius * radius - down * down)));
}

// Windows of a higher level stay in front of one that has come to the front.
void raise_higher_windows(NSInteger level) {
    for (NSWindow* window in [NSApp windows]) {
        if ([window isVisible] && [window level] > level) {
            XRaiseWindow(display(), x_window(window));
        }
    }
}

}  // namespace

const char* server_resources() { return XResourceManagerString(display()); }

bool windows_are_composed() {
    char name[32];
    snprintf(name, sizeof name, "_NET_WM_CM_S%d", DefaultScreen(display()));
    return XGetSelectionOwner(display(), XInternAtom(display(), name, False)) != None;
}

pointer_t current_pointer() {
    ::Window root, child;
    int x = 0, y = 0, inner_x, inner_y;
    unsigned mask = 0;
    XQueryPointer(display(), DefaultRootWindow(display()), &root, &child, &x, &y, &inner_x,
                  &inner_y, &mask);
    const unsigned buttons =
        (mask & Button1Mask ? 1 : 0) | (mask & Button3Mask ? 2 : 0) | (mask & Button2Mask ? 4 : 0);
    return {{x, y}, buttons};
}

point_t server_point(NSPoint point) {
    return {static_cast<int>(std::floor(point.x)),
            server_height() - static_cast<int>(std::ceil(point.y))};
}

NSPoint screen_point(point_t point) { return NSMakePoint(point.x, server_height() - point.y); }

area_t screen_at(point_t point) {
    const std::vector<area_t> areas = screens();
    const auto nearest = std::min_element(areas.begin(), areas.end(),
                                          [point](const area_t& one, const area_t& other) {
                                              return distance(one, point) < distance(other, point);
                                          });
    if (nearest != areas.end()) return *nearest;
    return {0, 0, DisplayWidth(display(), DefaultScreen(display())), server_height()};
}

NSWindow* new_menu_window(const area_t& area) {
    // Unscaled: what is drawn is scaled here, GNUstep must not do it again.
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:frame_of(area)
                                    styleMask:NSBorderlessWindowMask | NSUnscaledWindowMask
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    [window setReleasedWhenClosed:NO];
    [window setExcludedFromWindowsMenu:YES];
    [window setTitle:@"Menu"];
    [window setOpaque:NO];
    [window setBackgroundColor:[NSColor clearColor]];
    [window setLevel:NSPopUpMenuWindowLevel];
    [window setAutodisplay:NO];  // the run loop would swallow what a view raises
    free_from_window_manager(window);
    set_window_type(x_window(window), "_NET_WM_WINDOW_TYPE_POPUP_MENU");
    return window;
}

void free_from_window_manager(NSWindow* window) {
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    attributes.save_under = True;
    XChangeWindowAttributes(display(), x_window(window), CWOverrideRedirect | CWSaveUnder,
                            &attributes);
}

void move_menu_window(NSWindow* window, const area_t& area) {
    [window setFrame:frame_of(area) display:NO];
}

void hide_shape_of_menu_window(NSWindow* window) {
    XShapeCombineRectangles(display(), x_window(window), ShapeBounding, 0, 0, nullptr, 0, ShapeSet,
                            Unsorted);
    XFlush(display());
}

void cut_window(NSWindow* window, const std::vector<area_t>& parts) {
    std::vector<XRectangle> rectangles;
    for (const area_t& part : parts) {
        rectangles.push_back({static_cast<short>(part.left), static_cast<short>(part.top),
                              static_cast<unsigned short>(part.width),
                              static_cast<unsigned short>(part.height)});
    }
    XShapeCombineRectangles(display(), x_window(window), ShapeBounding, 0, 0, rectangles.data(),
                            static_cast<int>(rectangles.size()), ShapeSet, Unsorted);
    XFlush(display());
}

void shape_menu_window(NSWindow* window, int radius) {
    if (radius <= 0) {
        XShapeCombineMask(display(), x_window(window), ShapeBounding, 0, 0, None, ShapeSet);
        return;
    }
    const int width = static_cast<int>(NSWidth([window frame]));
    const int height = static_cast<int>(NSHeight([window frame]));
    std::vector<XRectangle> lines;
    const auto add = [&lines](int left, int top, int wide, int high) {
        lines.push_back({static_cast<short>(left), static_cast<short>(top),
                         static_cast<unsigned short>(wide), static_cast<unsigned short>(high)});
    };
    for (int y = 0; y < radius; y++) {
        const int cut = corner_cut(radius, y);
        add(cut, y, width - 2 * cut, 1);
        add(cut, height - 1 - y, width - 2 * cut, 1);
    }
    add(0, radius, width, std::max(0, height - 2 * radius));
    XShapeCombineRectangles(display(), x_window(window), ShapeBounding, 0, 0, lines.data(),
                            static_cast<int>(lines.size()), ShapeSet, Unsorted);
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
    display_menu_window(window);  // before it is seen
    [window orderFrontRegardless];
    raise_higher_windows([window level]);
    [window flushWindow];
    XFlush(display());
}

void make_tip_window(NSWindow* window) {
    free_from_window_manager(window);
    set_window_type(x_window(window), "_NET_WM_WINDOW_TYPE_TOOLTIP");
}

void tell_drawn_shadow(NSWindow* window, int extent) {
    const Atom property = XInternAtom(display(), "_GTK_FRAME_EXTENTS", False);
    const long sides[] = {extent, extent, extent, extent};
    XChangeProperty(display(), x_window(window), property, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(sides), 4);
}

void make_dialog_window(NSWindow* window) {
    set_window_type(x_window(window), "_NET_WM_WINDOW_TYPE_DIALOG");
}

// Where a window manager maps windows, that takes it a moment.
static bool wait_until_viewable(::Window window) {
    for (int tries = 0; tries < 100; tries++) {
        XWindowAttributes attributes;
        if (!XGetWindowAttributes(display(), window, &attributes)) return false;
        if (attributes.map_state == IsViewable) return true;
        usleep(10000);
    }
    return false;
}

void give_keyboard_to_window(NSWindow* window) {
    const ::Window target = x_window(window);
    if (!wait_until_viewable(target)) return;
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = target;
    message.xclient.message_type = XInternAtom(display(), "_NET_ACTIVE_WINDOW", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = 2;  // asked for by the user
    XSendEvent(display(), DefaultRootWindow(display()), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &message);
    XSetInputFocus(display(), target, RevertToParent, CurrentTime);
    XSync(display(), False);
}

bool window_has_keyboard(NSWindow* window) {
    ::Window focused = None;
    int revert = 0;
    XGetInputFocus(display(), &focused, &revert);
    return focused == x_window(window);
}

_cairo* focused_cairo() {
    // The context is the back end's own; both fields have their names since its first release.
    id context = [NSGraphicsContext currentContext];
    Ivar state_variable = class_getInstanceVariable([context class], "gstate");
    if (!state_variable) return nullptr;
    id state = object_getIvar(context, state_variable);
    Ivar cairo_variable = class_getInstanceVariable([state class], "_ct");
    if (!cairo_variable) return nullptr;
    const char* fields = reinterpret_cast<const char*>(state);
    return *reinterpret_cast<cairo_t* const*>(fields + ivar_getOffset(cairo_variable));
}

void copy_window(NSWindow* window, const area_t& part, _cairo* cairo, int x, int y) {
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(display(), x_window(window), &attributes)) return;
    cairo_surface_t* surface = cairo_xlib_surface_create(
        display(), x_window(window), attributes.visual, attributes.width, attributes.height);
    cairo_save(cairo);
    cairo_set_source_surface(cairo, surface, x - part.left, y - part.top);
    cairo_rectangle(cairo, x, y, part.width, part.height);
    cairo_fill(cairo);
    cairo_restore(cairo);
    cairo_surface_destroy(surface);
}

// GNUstep sets the mouse up at its first press, and handles what comes meanwhile first: a quick
// click would arrive as its release and then its press.
static void set_mouse_up() {
    static bool done;
    id server = GSCurrentServer();
    if (!done && [server respondsToSelector:@selector(initializeMouse)]) {
        [server performSelector:@selector(initializeMouse)];
    }
    done = true;
}

bool input_grab_t::take(NSWindow* window) {
    release();
    set_mouse_up();
    // Not by -capturemouse: it sends the time of GNUstep's last event, which the server refuses
    // when another program has held the pointer since. All events come as this window's.
    const auto grab = [window] {
        return XGrabPointer(display(), x_window(window), False,
                            PointerMotionMask | ButtonPressMask | ButtonReleaseMask, GrabModeAsync,
                            GrabModeAsync, None, None, CurrentTime) == GrabSuccess;
    };
    // Another program, often the one that sent the click, may hold the pointer for a moment more.
    bool held = grab();
    for (int tries = 0; !held && tries < 100; tries++) {
        usleep(10000);
        held = grab();
    }
    if (!held) return false;
    window_ = [window retain];
    take_keyboard();
    // GNUstep throws keys away while the application has no key window.
    if (![NSApp keyWindow]) {
        [window becomeKeyWindow];
        became_key_ = true;
    }
    return true;
}

bool input_grab_t::take_keyboard() {
    if (window_ && !keyboard_) {
        keyboard_ = XGrabKeyboard(display(), x_window(window_), False, GrabModeAsync, GrabModeAsync,
                                  CurrentTime) == GrabSuccess;
    }
    return keyboard_;
}

void input_grab_t::release() {
    if (!window_) return;
    XUngrabPointer(display(), CurrentTime);
    if (keyboard_) XUngrabKeyboard(display(), CurrentTime);
    keyboard_ = false;
    if (became_key_) [window_ resignKeyWindow];
    became_key_ = false;
    XSync(display(), False);
    [window_ release];
    window_ = nil;
}
