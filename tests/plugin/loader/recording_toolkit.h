// The toolkit's popup methods, replaced by ones that record their calls.
// To be installed before the plug-in is.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

@interface NSMenu (PopUpWithoutFont)
// Of the Mac; the plug-in has a replacement that it does not install.
- (void)_popUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
@end

namespace test {

// What reached one of the toolkit's own methods; objects that it does not take are nil.
struct popup_call_t {
    std::string method;
    id receiver;
    NSMenu* menu;
    NSEvent* event;
    NSView* view;
    NSFont* font;
};

// Replaces the methods, once a process.
void install_recording_toolkit();
// The calls since the last time.
std::vector<popup_call_t> take_popup_calls();
// What happens while a menu is tracked: called once, by the next popup that comes to the toolkit.
void set_tracking(const std::function<void()>& tracking);

}  // namespace test
