#include "appkit/light_start.h"

#include <Foundation/Foundation.h>
#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/sync.h>

#include "objc/method_patch.h"
#include "x11/question_connection.h"

namespace {

IMP stock_end;

// The counter that the window announces for the frames that it has drawn; None for none.
XSyncCounter counter_of(Window window) {
    Display* const display = question_connection();
    if (!display || !window) return None;
    const Atom name = XInternAtom(display, "_NET_WM_SYNC_REQUEST_COUNTER", True);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* value = nullptr;
    if (name != None) {
        XGetWindowProperty(display, window, name, 0, 1, False, XA_CARDINAL, &type, &format, &count,
                           &left, &value);
    }
    const bool is_number = value && format == 32 && count == 1;
    const XSyncCounter counter = is_number ? *reinterpret_cast<unsigned long*>(value) : None;
    if (value) XFree(value);
    return counter;
}

// The toolkit makes a counter for each window, and leaves it to the server when the window ends.
void end_window(id self, SEL selector, NSInteger number) {
    const XSyncCounter counter = counter_of(reinterpret_cast<Window>([self windowDevice:number]));
    reinterpret_cast<void (*)(id, SEL, NSInteger)>(stock_end)(self, selector, number);
    if (counter != None) XSyncDestroyCounter(static_cast<Display*>([self serverDevice]), counter);
}

}  // namespace

void end_counters_with_windows() {
    const MethodPatch patches[] = {
        {"XGServer", "termwindow:", reinterpret_cast<IMP>(end_window), &stock_end},
    };
    patch_methods(patches);
}
