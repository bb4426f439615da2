#include "plugin/loader/recording_toolkit.h"

#include <objc/runtime.h>

namespace {

std::vector<test::PopupCall> calls;
std::function<void()> next_tracking;

void track(const test::PopupCall& call) {
    calls.push_back(call);
    std::function<void()> tracking;
    tracking.swap(next_tracking);
    if (tracking) tracking();
}

// Each method knows its own name, because the call uses the name of the plug-in's method.
enum Kind { CLASS_PLAIN, CLASS_WITH_FONT, INSTANCE_PLAIN, INSTANCE_WITH_FONT };
const SEL names[] = {@selector(popUpContextMenu:withEvent:forView:),
                     @selector(popUpContextMenu:withEvent:forView:withFont:),
                     @selector(_popUpContextMenu:withEvent:forView:),
                     @selector(_popUpContextMenu:withEvent:forView:withFont:)};

template <Kind kind>
void popup(id self, SEL, NSMenu* menu, NSEvent* event, NSView* view) {
    track({sel_getName(names[kind]), self, menu, event, view, nil});
}

template <Kind kind>
void popup_with_font(id self, SEL, NSMenu* menu, NSEvent* event, NSView* view, NSFont* font) {
    track({sel_getName(names[kind]), self, menu, event, view, font});
}

template <typename Function>
void replace(Class owner, Kind kind, Function* function, const char* types) {
    class_replaceMethod(owner, names[kind], reinterpret_cast<IMP>(function), types);
}

}  // namespace

namespace test {

void install_recording_toolkit() {
    Class menu = [NSMenu class], meta = object_getClass(menu);
    replace(meta, CLASS_PLAIN, popup<CLASS_PLAIN>, "v@:@@@");
    replace(meta, CLASS_WITH_FONT, popup_with_font<CLASS_WITH_FONT>, "v@:@@@@");
    replace(menu, INSTANCE_PLAIN, popup<INSTANCE_PLAIN>, "v@:@@@");
    replace(menu, INSTANCE_WITH_FONT, popup_with_font<INSTANCE_WITH_FONT>, "v@:@@@@");
}

std::vector<PopupCall> take_popup_calls() {
    std::vector<PopupCall> taken;
    taken.swap(calls);
    return taken;
}

void set_tracking(const std::function<void()>& tracking) { next_tracking = tracking; }

}  // namespace test
