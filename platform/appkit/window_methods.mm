// Methods of the Mac's windows that GNUstep's lack.
#include <AppKit/AppKit.h>
#include <GNUstepGUI/GSDisplayServer.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace {

constexpr unsigned long all_desktops = 0xFFFFFFFF;

}  // namespace

@implementation NSWindow (MacWindow)

// Window managers read this property when the window is shown.
- (void)setCanBeVisibleOnAllSpaces:(BOOL)flag {
    id server = GSServerForWindow(self);
    auto* display = static_cast<Display*>([server serverDevice]);
    const auto window = reinterpret_cast<::Window>([server windowDevice:[self windowNumber]]);
    if (!display || !window) return;
    const Atom desktop = XInternAtom(display, "_NET_WM_DESKTOP", False);
    if (!flag) {
        XDeleteProperty(display, window, desktop);
        return;
    }
    XChangeProperty(display, window, desktop, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&all_desktops), 1);
}

@end
