#include "operations_ui/window_parts.h"

namespace operations {

NSTextField* MakeLabel(NSRect frame, NSString* text, NSFont* font) {
    NSTextField* label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBordered:NO];
    [label setBezeled:NO];
    [label setDrawsBackground:NO];
    [label setFont:font];
    [[label cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
    [label setStringValue:text];
    return label;
}

NSButton* MakeButton(NSRect frame, NSString* title, id target, SEL action) {
    NSButton* button = [[[NSButton alloc] initWithFrame:frame] autorelease];
    [button setTitle:title];
    [button setBezelStyle:NSRoundedBezelStyle];
    [button setTarget:target];
    [button setAction:action];
    return button;
}

NSImageView* MakeIcon(NSRect frame, const std::string& path) {
    NSString* text = [NSString stringWithUTF8String:path.c_str()];
    NSImageView* view = [[[NSImageView alloc] initWithFrame:frame] autorelease];
    [view setImageScaling:NSImageScaleProportionallyDown];
    [view setImage:text ? [[NSWorkspace sharedWorkspace] iconForFile:text] : nil];
    return view;
}

NSPanel* NewPanel(NSSize size, NSString* title) {
    NSPanel* panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, size.width, size.height)
                                                styleMask:NSTitledWindowMask
                                                  backing:NSBackingStoreBuffered
                                                    defer:YES];
    [panel setTitle:title];
    [panel setReleasedWhenClosed:NO];
    [panel setHidesOnDeactivate:NO];
    [panel center];
    return panel;
}

void ShowPanel(NSPanel* panel) {
    [NSApp activateIgnoringOtherApps:YES];
    [panel makeKeyAndOrderFront:nil];
}

}  // namespace operations
