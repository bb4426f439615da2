#include "gworkspace/desktop_level.h"

#include <AppKit/AppKit.h>

#include <objc/runtime.h>

namespace {

using OrderWindow = void (*)(NSWindow*, SEL, NSWindowOrderingMode, NSInteger);
OrderWindow original;

void order_desktop(NSWindow* desktop, SEL selector, NSWindowOrderingMode place, NSInteger other) {
    [desktop setLevel:NSDesktopWindowLevel];
    original(desktop, selector, place, other);
}

}  // namespace

void keep_desktop_below() {
    Class desktop = [objc_lookUpClass("GWDesktopWindow") class];
    Method method = class_getInstanceMethod(desktop, @selector(orderWindow:relativeTo:));
    // A desktop without a method of its own says nothing too late.
    if (!method || method == class_getInstanceMethod([desktop superclass], method_getName(method)))
        return;
    original = reinterpret_cast<OrderWindow>(
        method_setImplementation(method, reinterpret_cast<IMP>(&order_desktop)));
}
