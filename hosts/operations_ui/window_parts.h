// The parts of which the windows of file operations are made. Autoreleased views. Main thread.
#pragma once

#include <AppKit/AppKit.h>

#include <string>

namespace operations {

// Text that cannot be edited and has no frame; one line is shortened in its middle.
NSTextField* MakeLabel(NSRect frame, NSString* text, NSFont* font);
NSButton* MakeButton(NSRect frame, NSString* title, id target, SEL action);
NSImageView* MakeIcon(NSRect frame, const std::string& path);

// A panel of this size of content in the middle of the screen, a little above; not shown yet.
// The caller owns it.
NSPanel* NewPanel(NSSize size, NSString* title);
// Brings it before the other windows and gives it the keyboard.
void ShowPanel(NSPanel* panel);

}  // namespace operations
