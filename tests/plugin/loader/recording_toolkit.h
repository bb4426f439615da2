// The toolkit's popup methods, replaced by methods that record their calls. Install them before the
// plug-in.
#pragma once

#include <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

@interface NSMenu (PopUpWithoutFont)
// A method of the Mac; the plug-in has a replacement for it that it does not install.
- (void)_popUpContextMenu:(NSMenu*)menu withEvent:(NSEvent*)event forView:(NSView*)view;
@end

namespace test {

// A call of one of the toolkit's own methods; objects that the method does not take are nil.
struct PopupCall {
    std::string method;
    id receiver;
    NSMenu* menu;
    NSEvent* event;
    NSView* view;
    NSFont* font;
};

// Replaces the methods. Call it once per process.
void install_recording_toolkit();
// The calls since the last time.
std::vector<PopupCall> take_popup_calls();
// The action while a menu is tracked. The next popup that reaches the toolkit calls it once.
void set_tracking(const std::function<void()>& tracking);

}  // namespace test
